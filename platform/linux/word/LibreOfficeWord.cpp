#include "platform/linux/word/LibreOfficeWord.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/FindProgram.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/process/GuardedProcess.h"
#include "platform/linux/word/FlatText.h"
#include "platform/linux/word/WordSource.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include <md5.h>

namespace voxmate::linux_platform
{

namespace fs = std::filesystem;

namespace
{

constexpr const char* UsualFolders = "/usr/bin:/usr/lib/libreoffice/program";
constexpr std::chrono::milliseconds Interval{10}; ///< time between two calls of `goOn`
/// The most that one call and the wait before it count towards the time limit. Drawing a busy window takes less.
constexpr std::chrono::milliseconds LongestRound{100};

// An address where nothing listens: this machine's discard port (RFC 863). No name has to be looked up.
constexpr const char* DeadHost = "127.0.0.1";
constexpr const char* DeadPort = "9";

// Settings that keep a document from running macros, loading anything over the network and following its links while it
// is read. Importers of several formats load pictures without asking whether links may be followed, so of LibreOffice's
// content providers only those for files, and for what is inside files, are left. A proxy that leads nowhere stops code
// that does not use content providers.
constexpr const char* Prohibitions = R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry" xmlns:xs="http://www.w3.org/2001/XMLSchema">
<item oor:path="/org.openoffice.Office.Common/Security/Scripting">
<prop oor:name="MacroSecurityLevel" oor:op="fuse"><value>3</value></prop>
<prop oor:name="DisableMacrosExecution" oor:op="fuse"><value>true</value></prop>
<prop oor:name="BlockUntrustedRefererLinks" oor:op="fuse"><value>true</value></prop>
</item>
<item oor:path="/org.openoffice.Office.Writer/Content/Update">
<prop oor:name="Link" oor:op="fuse"><value>0</value></prop>
</item>
)";

// The remaining providers: an address's scheme and the service for it.
constexpr std::array<std::pair<const char*, const char*>, 6> Providers{{
    {"file", "com.sun.star.ucb.FileContentProvider"},
    {"vnd.sun.star.expand", "com.sun.star.ucb.ExpandContentProvider"},
    {"vnd.sun.star.hier", "com.sun.star.ucb.HierarchyContentProvider"},
    {"vnd.sun.star.pkg", "com.sun.star.ucb.PackageContentProvider"},
    {"vnd.sun.star.tdoc", "com.sun.star.ucb.TransientDocumentsContentProvider"},
    {"vnd.sun.star.zip", "com.sun.star.ucb.PackageContentProvider"},
}};

std::string Property(const std::string& name, const std::string& value)
{
    return "<prop oor:name=\"" + name + "\" oor:op=\"fuse\"><value>" + value + "</value></prop>\n";
}

// LibreOffice's configuration for one conversion.
std::string Settings()
{
    std::string text = Prohibitions;
    text += "<item oor:path=\"/org.openoffice.Inet/Settings\">\n" + Property("ooInetProxyType", "2") +
            Property("ooInetNoProxy", "");
    for (const std::string kind : {"HTTP", "HTTPS", "FTP"})
        text += Property("ooInet" + kind + "ProxyName", DeadHost) + Property("ooInet" + kind + "ProxyPort", DeadPort);
    text += "</item>\n<item oor:path=\"/org.openoffice.ucb.Configuration/ContentProviders\">\n"
            "<node oor:name=\"Local\" oor:op=\"replace\"><node oor:name=\"SecondaryKeys\">"
            "<node oor:name=\"Office\" oor:op=\"replace\"><node oor:name=\"ProviderData\">\n";
    for (const auto& [scheme, service] : Providers)
        text += "<node oor:name=\"" + std::string(scheme) + "\" oor:op=\"replace\">" + Property("URLTemplate", scheme) +
                Property("ServiceName", service) + Property("Arguments", "") + "</node>\n";
    return text + "</node></node></node></node>\n</item>\n</oor:items>\n";
}

std::string Environment(const char* name)
{
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody sets any
    return value ? value : "";
}

// A folder for one conversion, removed with all its contents.
class WorkFolder
{
public:
    WorkFolder()
    {
        // Its name becomes part of an address, in which other characters would be escaped.
        constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-";
        std::error_code error;
        const std::string usual = fs::temp_directory_path(error).string();
        for (const std::string& parent : {usual, std::string("/tmp")}) {
            const fs::path real = fs::canonical(parent, error);
            if (error || real.string().find_first_not_of(plain) != std::string::npos)
                continue;
            std::string name = (real / "voxmate-word-XXXXXX").string();
            if (::mkdtemp(name.data())) {
                path_ = name;
                return;
            }
        }
        throw CommandFailed();
    }
    ~WorkFolder()
    {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

// The name of the socket through which a second LibreOffice with the same profile would find the first; a killed one
// cannot remove it. The name contains the MD5 digest of the profile's address in UTF-16, each byte in hexadecimal
// without a leading zero.
std::string SocketName(const std::string& profile)
{
    std::string bytes;
    for (const char16_t unit : Utf8ToUtf16(profile)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    std::string name = "OSL_PIPE_" + std::to_string(::getuid()) + "_SingleOfficeIPC_";
    std::array<std::uint8_t, MD5_DIGEST_LENGTH> digest{};
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    MD5Final(digest.data(), &context);
    for (const unsigned byte : digest) {
        constexpr const char* digits = "0123456789abcdef";
        if (byte >= 16)
            name += digits[byte >> 4];
        name += digits[byte & 15];
    }
    return name;
}

GuardedCommand Conversion(const std::string& program, const std::string& folder)
{
    const std::string profile = "file://" + folder + "/profile";
    GuardedCommand command;
    command.program = program;
    command.arguments = {"-env:UserInstallation=" + profile,
                         "--headless",
                         "--invisible",
                         "--nologo",
                         "--norestore",
                         "--nodefault",
                         "--nolockcheck",
                         "--nofirststartwizard",
                         "--convert-to",
                         "fodt:OpenDocument Text Flat XML",
                         "--outdir",
                         folder + "/out",
                         folder + "/document.doc"};
    command.environment = {"HOME=" + folder + "/home", "TMPDIR=" + folder + "/tmp", "SAL_USE_VCLPLUGIN=svp"};
    for (const char* name : {"PATH", "LANG", "LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_TIME", "LC_NUMERIC", "TZ"})
        if (const std::string value = Environment(name); !value.empty())
            command.environment.push_back(std::string(name) + "=" + value);
    for (const char* name : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy"})
        command.environment.push_back(std::string(name) + "=http://" + DeadHost + ":" + DeadPort);
    command.withoutNetwork = true;
    command.folder = folder;
    const std::string socket = SocketName(profile);
    command.leavings = {folder, "/tmp/" + socket, "/var/tmp/" + socket};
    return command;
}

class LibreOfficeApplication : public WordApplication
{
public:
    LibreOfficeApplication(std::string program, std::chrono::milliseconds timeLimit)
        : program_(std::move(program)), timeLimit_(timeLimit)
    {
    }

    // It never has a window.
    void SetVisible(bool /*visible*/) override {}

    void Open(const std::string& name, const std::function<bool()>& goOn) override
    {
        Close();
        std::optional<std::string> text = Convert(name, goOn);
        if (!text)
            throw CommandFailed();
        // Even an empty document has a paragraph; its end alone is nothing to read.
        if (text->find_first_not_of('\r') == std::string::npos)
            text->clear();
        document_ = DecodeUtf8(*text);
    }

    std::int32_t RangeEnd() override { return static_cast<std::int32_t>(Document().size()); }

    std::string RangeText(std::int32_t start, std::int32_t end) override
    {
        const std::int32_t from = std::clamp(start, 0, RangeEnd());
        const std::int32_t to = std::clamp(end, from, RangeEnd());
        return EncodeUtf8(std::u32string_view(Document())
                              .substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
    }

    void Close() override { document_.reset(); }
    void Quit() override { Close(); }

private:
    const std::u32string& Document() const
    {
        if (!document_)
            throw CommandFailed();
        return *document_;
    }

    // The main text; nothing when the document cannot be converted.
    std::optional<std::string> Convert(const std::string& name, const std::function<bool()>& goOn) const
    {
        const WorkFolder folder;
        std::error_code error;
        for (const char* part : {"/profile/user", "/home", "/tmp", "/out"})
            fs::create_directories(folder.Path() + part, error);
        std::ofstream(folder.Path() + "/profile/user/registrymodifications.xcu") << Settings();
        // The copy has a plain name in its own folder, whatever the document's name and path contain.
        if (!PlaceDocument(name, folder.Path() + "/document.doc"))
            return std::nullopt;
        GuardedProcess process(Conversion(program_, folder.Path()));
        // A call of `goOn` may return late, for example while a message box is open; that time must not count against
        // the conversion.
        std::chrono::steady_clock::duration waited{};
        for (auto last = std::chrono::steady_clock::now(); !process.Ended(Interval);) {
            if (!goOn() || waited >= timeLimit_)
                return std::nullopt;
            const auto now = std::chrono::steady_clock::now();
            waited += std::min<std::chrono::steady_clock::duration>(now - std::exchange(last, now), LongestRound);
        }
        std::optional<std::string> text = ReadWholeFile(folder.Path() + "/out/document.fodt");
        if (text)
            text = MainText(*text);
        // Removing a profile can take longer than a window may freeze.
        process.End();
        while (!process.Gone(Interval))
            if (!goOn())
                return std::nullopt;
        return text;
    }

    std::string program_;
    std::chrono::milliseconds timeLimit_;
    std::optional<std::u32string> document_;
};

} // namespace

LibreOfficeWord::LibreOfficeWord(std::string folders, std::chrono::milliseconds timeLimit)
    : folders_(std::move(folders)), timeLimit_(timeLimit)
{
}

std::string LibreOfficeWord::Folders()
{
    return Environment("PATH") + ":" + UsualFolders;
}

std::unique_ptr<WordApplication> LibreOfficeWord::CreateWord()
{
    const std::string program = FindProgram("soffice", folders_);
    if (program.empty())
        throw CannotCreateObject();
    return std::make_unique<LibreOfficeApplication>(program, timeLimit_);
}

} // namespace voxmate::linux_platform
