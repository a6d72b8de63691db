#include "platform/linux/word/Office.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/process/GuardedProcess.h"
#include "platform/linux/word/FlatText.h"
#include "platform/linux/word/WordSource.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <md5.h>

namespace voxmate::linux_platform
{

namespace fs = std::filesystem;

namespace
{

/// How much lower the priority is of one that starts ahead. It cannot be raised again without privileges, and the user
/// may come to wait for it, so the step is small: it gets half as much time as an ordinary process that is as busy.
constexpr int StepAside = 3;

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

// The command to start: the launcher beside soffice, which is a script that does nothing but find it. Starting the
// launcher itself saves the eight processes that the script needs for that.
std::string Launcher(const std::string& program)
{
    std::error_code error;
    const std::string launcher = (fs::canonical(program, error).parent_path() / "oosplash").string();
    return !error && ::access(launcher.c_str(), X_OK) == 0 ? launcher : program;
}

// What LibreOffice notes in a profile once it has looked through the extensions that come with it: the number of its
// build. Without this note it does so at the first start with a profile, and then starts a second time.
std::string BuildNumber(const std::string& launcher)
{
    constexpr std::string_view key = "buildid=";
    std::ifstream file(fs::path(launcher).parent_path() / "versionrc");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(key))
            return line.substr(key.size());
    return {};
}

void WriteFile(const std::string& path, std::string_view content)
{
    std::ofstream(path, std::ios::binary) << content;
}

// A page that one that starts ahead opens, so that it has loaded by then what it needs for any document: without it, a
// page takes it twice as long. Like a document's, its text has paragraphs, letters of several kinds and a table.
std::string FirstPage()
{
    std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text"><office:body><office:text>
)";
    constexpr int paragraphs = 20;
    for (int i = 0; i < paragraphs; ++i)
        text += "<text:p>A page of words, 12 or 13 to a line; so much that it fills a page from its top – to its "
                "bottom, “as usual”, with ä, é, Ж and 漢字.</text:p>\n";
    return text + "<table:table><table:table-column/><table:table-row><table:table-cell><text:p>A cell.</text:p>"
                  "</table:table-cell></table:table-row></table:table></office:text></office:body></office:document>\n";
}

} // namespace

// Where all of its files are, and the commands that refer to them.
struct Office::Place {
    explicit Place(const std::string& program)
        : launcher(Launcher(program)), profile("file://" + folder.Path() + "/profile"), socket(SocketName(profile))
    {
        std::error_code error;
        for (const char* part : {"/profile/user/extensions", "/home", "/tmp", "/out"})
            fs::create_directories(folder.Path() + part, error);
        WriteFile(folder.Path() + "/profile/user/registrymodifications.xcu", Settings());
        if (const std::string number = BuildNumber(launcher); !number.empty())
            WriteFile(folder.Path() + "/profile/user/extensions/buildid", number);
    }

    std::string Document() const { return folder.Path() + "/document.doc"; }
    std::string Result() const { return folder.Path() + "/out/document.fodt"; }

    // A command without anything that LibreOffice is to do.
    GuardedCommand Command() const
    {
        GuardedCommand command;
        command.program = launcher;
        command.arguments = {"-env:UserInstallation=" + profile,
                             "--headless",
                             "--invisible",
                             "--nologo",
                             "--norestore",
                             "--nodefault",
                             "--nolockcheck",
                             "--nofirststartwizard"};
        command.environment = {"HOME=" + folder.Path() + "/home", "TMPDIR=" + folder.Path() + "/tmp",
                               "SAL_USE_VCLPLUGIN=svp"};
        for (const char* name : {"PATH", "LANG", "LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_TIME", "LC_NUMERIC", "TZ"})
            if (const std::string value = Environment(name); !value.empty())
                command.environment.push_back(std::string(name) + "=" + value);
        for (const char* name : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy"})
            command.environment.push_back(std::string(name) + "=http://" + DeadHost + ":" + DeadPort);
        command.withoutNetwork = true;
        command.folder = folder.Path();
        command.leavings = {folder.Path(), "/tmp/" + socket, "/var/tmp/" + socket};
        return command;
    }

    // Whether LibreOffice listens for a second one with the same profile, which hands over what it is to do.
    bool Listens() const
    {
        std::error_code error;
        return fs::exists("/tmp/" + socket, error) || fs::exists("/var/tmp/" + socket, error);
    }

    WorkFolder folder;
    std::string launcher;
    std::string profile; ///< as an address
    std::string socket;
};

Office::Office(const std::string& program) : place_(std::make_unique<Place>(program)) {}

Office::~Office() = default;

void Office::StartAhead()
{
    GuardedCommand command = place_->Command();
    const std::string page = place_->folder.Path() + "/page.fodt";
    WriteFile(page, FirstPage());
    command.arguments.push_back(page);
    command.niceness = StepAside;
    ahead_ = std::make_unique<GuardedProcess>(command);
}

std::optional<std::string> Office::Convert(const std::string& document, const std::function<bool()>& goOn)
{
    // The copy has a plain name in its own folder, whatever the document's name and path contain.
    if (!PlaceDocument(document, place_->Document()))
        return std::nullopt;
    while (ahead_ && !place_->Listens())
        if (fell_ = ahead_->Ended(Interval); fell_ || !goOn())
            return std::nullopt;
    GuardedCommand command = place_->Command();
    command.arguments.insert(command.arguments.end(), {"--convert-to", "fodt:OpenDocument Text Flat XML", "--outdir",
                                                       place_->folder.Path() + "/out", place_->Document()});
    // With one that listens this hands over the document, returns when it is converted, and has the same leavings: if
    // that one is gone, this becomes a LibreOffice with the same profile.
    converting_ = std::make_unique<GuardedProcess>(command);
    while (!converting_->Ended(Interval))
        if (!goOn())
            return std::nullopt;
    const std::optional<std::string> flat = ReadWholeFile(place_->Result());
    // That it ended is noticed a few milliseconds later than by the one that had handed over its document.
    constexpr std::chrono::milliseconds late{100};
    fell_ = !flat && ahead_ && ahead_->Ended(late);
    End();
    return flat ? MainText(*flat) : std::nullopt;
}

void Office::End()
{
    for (const auto& process : {ahead_.get(), converting_.get()})
        if (process)
            process->End();
}

bool Office::Gone(std::chrono::milliseconds wait)
{
    return (!ahead_ || ahead_->Gone(wait)) && (!converting_ || converting_->Gone(wait));
}

} // namespace voxmate::linux_platform
