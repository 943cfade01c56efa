#include <orlix/Commands.hpp>

#include <cstdio>

int main(int argc, char** argv)
{
    std::string output;
    std::string error;
    const int status = orlix::app::runCommand(argc, argv, output, error);
    std::fputs(error.c_str(), stderr);
    std::fwrite(output.data(), 1, output.size(), stdout);
    if (std::fflush(stdout) != 0) {
        std::fputs("orlix: standard output cannot be written\n", stderr);
        return 1;
    }
    return status;
}
