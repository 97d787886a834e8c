#pragma once
// What the makers of seeds share.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace nmr::test {

/// Writes the inputs into the folder that is the only argument of the program.
inline int WriteSeeds(int argc, char** argv, const std::vector<std::string>& seeds)
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (std::size_t i = 0; i < seeds.size(); ++i)
        std::ofstream(folder / ("seed" + std::to_string(i)), std::ios::binary) << seeds[i];
    return 0;
}

} // namespace nmr::test
