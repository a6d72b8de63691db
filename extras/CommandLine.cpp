#include "extras/CommandLine.h"

#include "base/FileName.h"

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace voxmate
{

CommandLine ParseCommandLine(std::span<const char* const> arguments, const std::string& folder)
{
    CommandLine line;
    bool options = true;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (!options || !argument.starts_with('-') || argument == "-")
            line.Call.Files.push_back(IsAddress(argument)
                                          ? PathOfAddress(std::string(argument))
                                          : (std::filesystem::path(folder) / argument).lexically_normal().string());
        else if (argument == "--")
            options = false;
        else if (argument == "--quiet")
            line.Quiet = true;
        else if (argument == "--action" && i + 1 < arguments.size())
            line.Call.Action = arguments[++i];
        else if (argument == "--help" || argument == "-h")
            line.Help = true;
        else if (argument == "--version" || argument == "-v")
            line.Version = true;
        else if (line.NotUnderstood.empty())
            line.NotUnderstood = argument;
    }
    return line;
}

std::string CommandLineHelp()
{
    return "Usage: voxmate [OPTION...] [FILE...]\n"
           "\n"
           "A desktop assistant that talks. It reads documents aloud (text, Markdown, HTML,\n"
           "RTF, PDF, EPUB, DOCX, ODT, DOC), plays wave files and installs characters\n"
           "(.acs). Where Voxmate runs already, that program does so.\n"
           "\n"
           "  --quiet         start into the notification area, without splash and greeting\n"
           "  --action NAME   do what a click with the right button on the launcher offers:\n"
           "                  read-clipboard, show-reminders or stop\n"
           "  -h, --help      show this help\n"
           "  -v, --version   show the version\n";
}

} // namespace voxmate
