// A test with its own files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>

namespace voxmate::linux_platform
{

/// Has its own temporary folder, and restores the environment afterwards.
class OwnFolder : public ::testing::Test
{
protected:
    std::filesystem::path folder;

    OwnFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "voxmate-own-XXXXXX").string();
        folder = ::mkdtemp(name.data());
    }
    ~OwnFolder() override
    {
        for (const auto& [name, value] : before_) {
            if (value)
                ::setenv(name.c_str(), value->c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }
    void Set(const char* name, const std::string& value)
    {
        const char* old = std::getenv(name);
        before_.emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
        ::setenv(name, value.c_str(), 1);
    }
    void Write(const std::filesystem::path& path, const std::string& text)
    {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    std::string Read(const std::filesystem::path& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void Program(const std::filesystem::path& path, const std::string& script = "#!/bin/sh\n")
    {
        Write(path, script);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

private:
    std::map<std::string, std::optional<std::string>> before_;
};

} // namespace voxmate::linux_platform
