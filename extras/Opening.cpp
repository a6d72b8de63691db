#include "extras/Opening.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "modules/Command.h"

#include <utility>

namespace voxmate
{

Opening::Opening(Program& program) : program_(program)
{
    Add("txt", [this](const std::string& file) { program_.Reading.ReadText(file); });
    Tell("reads text files (.txt)");
}

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
        OpenOne(file);
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
    else if (!program_.Host.Files.FileExists(file))
        complain("File not found:" + std::string(CrLf) + file);
    else if (reader == readers_.end())
        complain("Voxmate " + Kinds() + ". It cannot open the following file:" + CrLf + file);
    else
        Reader(reader->second)(file);
}

std::string Opening::Kinds() const
{
    std::string kinds;
    for (std::size_t i = 0; i < kinds_.size(); ++i)
        kinds += (i == 0 ? "" : i + 1 == kinds_.size() ? " and " : ", ") + kinds_[i];
    return kinds;
}

} // namespace voxmate
