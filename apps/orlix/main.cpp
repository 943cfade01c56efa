#include <orlix/Commands.hpp>
#include <orlix/Progress.hpp>

#include <iostream>

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    orlix::app::catchInterrupts();
    const int status = orlix::app::runCommand(argc, argv, std::cout, std::cerr);
    if (!std::cout.flush()) {
        std::cerr << "orlix: standard output cannot be written\n";
        return 1;
    }
    return status;
}
