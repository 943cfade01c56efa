#include <files/Errors.hpp>
#include <files/ImageFile.hpp>

#include <boost/crc.hpp>
#include <nlohmann/json.hpp>

#include <iostream>

/// Prints what an image file is, with the CRC-32 of its pixels in the order x, y, z, c, t:
///     print_image PATH [--as TYPE] [--scaled] [--series N] [--pages ORDER] [--axes LETTERS] [--stack AXIS PATH...]
int main(int argc, char** argv)
{
    using namespace orlix;
    files::OpenOptions options;
    std::vector<std::string> paths;
    std::string stack;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--as") {
            options.as = image::findImageBufferType(argv[++i]);
        } else if (word == "--scaled") {
            options.scaled = true;
        } else if (word == "--series") {
            options.series = std::stoul(argv[++i]);
        } else if (word == "--pages") {
            options.pages = argv[++i];
        } else if (word == "--axes") {
            options.axes = argv[++i];
        } else if (word == "--stack") {
            stack = argv[++i];
        } else {
            paths.push_back(word);
        }
    }
    try {
        const files::ReaderPtr reader =
            stack.empty() ? files::openImage(paths.at(0), options) : files::openStack(paths, stack[0], options);
        const Ptr<image::BaseImage> image = files::readImage(*reader);
        const std::vector<std::string> notes = reader->getNotes();
        const files::ImageFacts& facts = reader->getFacts();
        const image::ImageGeometry& size = facts.geometry;
        // The same pixels come in four parts of every plane.
        auto parts = image::BaseImage::create(image->getType(), size);
        const std::size_t x = size.x / 2;
        const std::size_t y = size.y / 3;
        const files::Box quarters[] = {
            {{0, 0}, {x, y}}, {{x, 0}, {size.x - x, y}}, {{0, y}, {x, size.y - y}}, {{x, y}, {size.x - x, size.y - y}}};
        boost::crc_32_type crc;
        boost::crc_32_type crcOfParts;
        for (std::size_t plan = 0; plan < size.z * size.c * size.t; ++plan) {
            const std::size_t z = plan % size.z;
            const std::size_t c = plan / size.z % size.c;
            const std::size_t t = plan / size.z / size.c;
            for (files::Box box : quarters) {
                if (!box.size.empty()) {
                    std::byte* const first = parts->getRow(box.begin.y, z, c, t) + box.begin.x * image->getPixelSize();
                    box.begin = {box.begin.x, box.begin.y, z, c, t};
                    reader->fetch(box, {first, parts->getStrides()});
                }
            }
            const std::size_t bytes = size.x * size.y * image->getPixelSize();
            crc.process_bytes(image->getRow(0, z, c, t), bytes);
            crcOfParts.process_bytes(parts->getRow(0, z, c, t), bytes);
        }
        const nlohmann::json printed = {{"type", getName(facts.type)},
                                        {"size", {size.t, size.c, size.z, size.y, size.x}},
                                        {"crc", crc.checksum()},
                                        {"crcOfParts", crcOfParts.checksum()},
                                        {"format", facts.format},
                                        {"axes", facts.axes},
                                        {"rule", facts.axesRule},
                                        {"pixelSize", facts.pixelSize},
                                        {"unit", facts.unit},
                                        {"scale", {facts.scale.slope, facts.scale.intercept}},
                                        {"compression", facts.compression},
                                        {"series", facts.series},
                                        {"notes", notes}};
        std::cout << printed.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
        return 0;
    } catch (const std::exception& error) {
        std::cout << nlohmann::json{{"error", error.what()}}.dump(-1, ' ', false,
                                                                  nlohmann::json::error_handler_t::replace)
                  << "\n";
        return 1;
    }
}
