// The program that reads one document, its input, and writes what it finds to its output. It is started by Voxmate and
// keeps itself from everything else, because documents come from anywhere.
#include "platform/LocalTime.h"
#include "platform/Sandbox.h"
#include "readers/Frames.h"
#include "readers/ReadDocument.h"
#include "readers/pdf/Pdf.h"

#include <filesystem>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace
{

using namespace voxmate;
using readers::Refusal;

// A book of thousands of pages takes some seconds.
constexpr std::chrono::seconds LongestTime{60};
constexpr std::uint64_t MostMemory = std::uint64_t{1} << 30;

void Tell(const readers::Frame& frame)
{
    const std::string bytes = readers::EncodeFrame(frame);
    if (!WriteOutput(bytes.data(), bytes.size()))
        LeaveSandbox(0);
}

// Where libraries look while they read: tables for PDF files in East Asian writings, time zones that calendars name,
// and the system's older encodings.
std::vector<std::string> LibrariesFolders()
{
    namespace fs = std::filesystem;
    std::vector<std::string> folders{"/usr/share/poppler", "/usr/share/zoneinfo", "/usr/lib/gconv", "/usr/lib64/gconv"};
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/usr/lib", error))
        if (const fs::path path = entry.path() / "gconv"; fs::is_directory(path, error))
            folders.push_back(path.string());
    return folders;
}

Refusal Read(std::string_view bytes)
{
    try {
        readers::ReadDocument(
            bytes, [](readers::Kind kind) { Tell(kind); }, [](readers::Block&& block) { Tell(std::move(block)); });
        return Refusal::None;
    } catch (const readers::Refused& refused) {
        return refused.reason;
    } catch (const std::bad_alloc&) {
        return Refusal::TooLarge;
    } catch (const std::length_error&) {
        return Refusal::TooLarge;
    } catch (const std::exception&) {
        return Refusal::Damaged;
    }
}

} // namespace

int main()
{
    // The zone's own file cannot be opened later.
    LocalTime(0);
    const InputBytes input = MapInput(readers::LargestFile);
    if (!EnterSandbox({LongestTime, MostMemory + (input.data ? input.size : 0), LibrariesFolders()}))
        Tell(Refusal::NoReader);
    else if (!input.good)
        Tell(Refusal::CannotRead);
    else if (!input.data && input.size > 0)
        Tell(Refusal::TooLarge);
    else
        Tell(Read({input.data, input.size}));
    LeaveSandbox(0);
}
