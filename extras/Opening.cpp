#include "extras/Opening.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "modules/Command.h"

#include <cstdint>
#include <utility>

namespace voxmate
{

Opening::Opening(Program& program, Reader other) : program_(program), other_(std::move(other)) {}

void Opening::Add(const std::string& extension, Reader reader)
{
    readers_[UCase(extension)] = std::move(reader);
}

void Opening::Put(const std::vector<std::string>& files)
{
    waiting_.insert(waiting_.end(), files.begin(), files.end());
}

bool Opening::GoOn()
{
    // Reading and asking let events run, and more files may come among them.
    const Command command(working_);
    if (!command.Begun() || !program_.StartedUp)
        return waiting_.empty();
    while (!waiting_.empty()) {
        const std::string file = std::move(waiting_.front());
        waiting_.pop_front();
        const std::uint32_t stops = program_.StopCount;
        OpenOne(file);
        if (program_.StopCount != stops)
            waiting_.clear();
    }
    return true;
}

void Opening::OpenOne(const std::string& file)
{
    const auto complain = [this](const std::string& text) {
        program_.Messages.Announce(text, vbExclamation, "Voxmate - File Error", "Decline");
    };
    const auto reader = readers_.find(UCase(program_.Host.Files.GetExtensionName(file)));
    if (IsAddress(file))
        complain("The following file is not on this computer:" + std::string(CrLf) + file);
    else if (!program_.Host.Files.FileExists(file) && !program_.Host.Files.FolderExists(file))
        complain("File not found:" + std::string(CrLf) + file);
    else
        Reader(reader == readers_.end() ? other_ : reader->second)(file);
}

} // namespace voxmate
