// A test with its own files.
#pragma once

#include "platform/windows/files/File.h"
#include "platform/windows/system/Wide.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace voxmate::windows_platform
{

/// Has its own temporary folder, and removes it afterwards.
class OwnFolder : public ::testing::Test
{
protected:
    std::string folder;

    OwnFolder()
        : folder(Narrow(std::filesystem::temp_directory_path().native()) + "voxmate-own-" +
                 std::to_string(std::random_device()()))
    {
        std::filesystem::create_directory(Wide(folder));
    }
    ~OwnFolder() override
    {
        std::error_code error;
        std::filesystem::remove_all(SystemPath(folder), error);
    }
    std::string Path(const std::string& name) const { return folder + "\\" + name; }
    static void Write(const std::string& path, const std::string& text)
    {
        std::ofstream(std::filesystem::path(SystemPath(path)), std::ios::binary) << text;
    }
    static std::string Read(const std::string& path)
    {
        std::ifstream in(std::filesystem::path(SystemPath(path)), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
};

/// The number of the run-time error that `act` raises; 0 for none.
template <class Act>
std::int32_t ErrorOf(Act act)
{
    try {
        act();
    } catch (const RuntimeError& error) {
        return error.Number;
    }
    return 0;
}

} // namespace voxmate::windows_platform
