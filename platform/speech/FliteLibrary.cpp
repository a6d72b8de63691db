#include "platform/speech/FliteLibrary.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <thread>

#include <csignal>
#include <cstring>
#include <dlfcn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::speech
{

namespace
{

// The address sanitizer reserves far more addresses than any limit would leave it.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool UnderAddressSanitizer = true;
#elif defined(__has_feature)
constexpr bool UnderAddressSanitizer = __has_feature(address_sanitizer);
#else
constexpr bool UnderAddressSanitizer = false;
#endif

constexpr const char* Core = "libflite.so.1";

std::string VoiceLibrary(const std::string& key)
{
    return "libflite_cmu_us_" + key + ".so.1";
}

void* OpenCore()
{
    static void* const handle = dlopen(Core, RTLD_LAZY | RTLD_LOCAL);
    return handle;
}

/// Reads what voice files are made of; stays false once something was not there.
class FlitevoxReader
{
public:
    explicit FlitevoxReader(const std::filesystem::path& path) : file_(path, std::ios::binary) {}

    explicit operator bool() const { return static_cast<bool>(file_); }

    std::int32_t Number()
    {
        std::array<char, 4> bytes{};
        file_.read(bytes.data(), bytes.size());
        std::int32_t number = 0; // in this machine's order, as the library writes it
        std::memcpy(&number, bytes.data(), bytes.size());
        return file_ ? number : 0;
    }

    /// A length that counts the terminator, and the text.
    std::string Text()
    {
        constexpr std::int32_t longest = 4096;
        const std::int32_t length = Number();
        if (length < 1 || length > longest)
            file_.setstate(std::ios::failbit);
        if (!file_)
            return {};
        std::string text(static_cast<std::size_t>(length), '\0');
        file_.read(text.data(), length);
        text.pop_back();
        return text;
    }

    bool Begins(std::string_view mark)
    {
        std::string text(mark.size() + 1, '\0');
        file_.read(text.data(), static_cast<std::streamsize>(text.size()));
        const bool begins = file_ && text.starts_with(mark) && text.back() == '\0';
        if (Number() != 1) // written on a machine of another byte order
            file_.setstate(std::ios::failbit);
        return begins;
    }

private:
    std::ifstream file_;
};

/// In a child: ends with the program (its thread that forked), and holds nothing open of it. Else the program's lock,
/// display and sound would stay for as long as the child lives.
void LeaveProgram(pid_t program)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != program) // it ended before it could be asked for that
        _exit(1);
    constexpr unsigned first = 3;
    if (close_range(first, ~0U, 0) == 0)
        return;
    // A kernel that does not know the call.
    const long most = sysconf(_SC_OPEN_MAX);
    for (int file = first; file < most; ++file)
        close(file);
}

/// Waits for a child: whether it ended as it should. None when that is not known, or nobody wanted it any more: then
/// the child is put to an end.
std::optional<bool> EndsWell(pid_t child, const std::function<bool()>& wanted)
{
    constexpr std::chrono::milliseconds interval{10};
    int status = 0;
    while (true) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child)
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (ended < 0 && errno != EINTR)
            return std::nullopt;
        if (!wanted()) {
            kill(child, SIGKILL);
            while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
            }
            return std::nullopt;
        }
        std::this_thread::sleep_for(interval);
    }
}

} // namespace

std::optional<FlitevoxHead> ReadFlitevoxHead(const std::filesystem::path& file)
{
    FlitevoxReader in(file);
    FlitevoxHead head;
    if (!in.Begins("CMU_FLITE_CG_VOXDATA-v2.0"))
        return std::nullopt;
    constexpr int mostFeatures = 1000;
    std::string name;
    for (int i = 0; i < mostFeatures && in && name != "end_of_features"; ++i) {
        name = in.Text();
        const std::string value = in.Text();
        if (name == "language")
            head.language = value;
        if (name == "country")
            head.country = value;
    }
    in.Text(); // the database's name
    const std::int32_t types = in.Number();
    for (std::int32_t i = 0; i < types && in; ++i)
        in.Text();
    if (in.Number() != types) // told twice
        return std::nullopt;
    head.sampleRate = in.Number();
    constexpr int lowestRate = 8000;
    constexpr int highestRate = 48000;
    if (!in || name != "end_of_features" || head.sampleRate < lowestRate || head.sampleRate > highestRate)
        return std::nullopt;
    return head;
}

std::filesystem::path FliteLibrary::Folder()
{
    void* const handle = OpenCore();
    void* const function = handle ? dlsym(handle, "flite_init") : nullptr;
    Dl_info info{};
    if (!function || !dladdr(function, &info) || !info.dli_fname)
        return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

bool FliteLibrary::HasVoice(const std::string& key)
{
    const std::filesystem::path folder = Folder();
    std::error_code error;
    return !folder.empty() && std::filesystem::exists(folder / VoiceLibrary(key), error);
}

bool FliteLibrary::Load()
{
    void* const handle = OpenCore();
    if (!handle)
        return false;
    bool complete = true;
    const auto load = [&]<typename Function>(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(handle, name));
        complete = complete && function;
    };
    load(voiceLoad, "flite_voice_load");
    load(addLanguage, "flite_add_lang");
    load(init, "flite_init");
    load(synthText, "flite_synth_text");
    load(deleteUtterance, "delete_utterance");
    load(featSet, "feat_set");
    load(featSetFloat, "feat_set_float");
    load(featPresent, "feat_present");
    load(featVal, "feat_val");
    load(valCgDb, "val_cg_db");
    load(cgDbVal, "cg_db_val");
    load(newStreamingInfo, "new_audio_streaming_info");
    load(streamingInfoVal, "audio_streaming_info_val");
    load(uttRelation, "utt_relation");
    load(relationHead, "relation_head");
    load(itemNext, "item_next");
    load(featureString, "flite_ffeature_string");
    load(featureFloat, "flite_ffeature_float");
    load(featureInt, "flite_ffeature_int");
    if (complete)
        init();
    return complete;
}

bool FliteLibrary::LoadEnglish()
{
    if (english_)
        return true;
    const auto find = [](const char* library, const char* function) {
        void* const handle = dlopen((Folder() / library).c_str(), RTLD_LAZY | RTLD_LOCAL);
        return handle ? dlsym(handle, function) : nullptr;
    };
    using Rules = void (*)(cst_voice*);
    using Lexicon = cst_lexicon* (*)();
    const auto rules = reinterpret_cast<Rules>(find("libflite_usenglish.so.1", "usenglish_init"));
    const auto lexicon = reinterpret_cast<Lexicon>(find("libflite_cmulex.so.1", "cmulex_init"));
    english_ = rules && lexicon && addLanguage("eng", rules, lexicon);
    return english_;
}

// The child has this thread only, and what it calls needs no other. None: it was given up or could not be tried.
std::optional<bool> FliteLibrary::SpeaksWell(const std::filesystem::path& file,
                                             const std::function<bool()>& wanted) const
{
    const pid_t program = getpid();
    const pid_t child = fork();
    if (child < 0)
        return std::nullopt;
    if (child == 0) {
        LeaveProgram(program);
        constexpr unsigned longestSeconds = 20;
        constexpr rlim_t mostMemory = rlim_t{1} << 32;
        for (const int fatal : {SIGSEGV, SIGBUS, SIGFPE, SIGABRT, SIGALRM, SIGTERM})
            std::signal(fatal, SIG_DFL);
        const rlimit memory{mostMemory, mostMemory};
        const rlimit core{0, 0};
        if (!UnderAddressSanitizer)
            setrlimit(RLIMIT_AS, &memory);
        setrlimit(RLIMIT_CORE, &core);
        alarm(longestSeconds);
        cst_voice* const voice = voiceLoad(file.c_str());
        const bool speaks = voice && synthText("The old clock has stopped, has it?", voice);
        _exit(speaks ? 0 : 1);
    }
    return EndsWell(child, wanted);
}

cst_voice* FliteLibrary::LoadFile(const std::filesystem::path& file, const std::function<bool()>& wanted)
{
    if (damaged_.contains(file) || !LoadEnglish())
        return nullptr;
    const std::optional<bool> speaks = SpeaksWell(file, wanted);
    if (!speaks)
        return nullptr;
    cst_voice* const voice = *speaks ? voiceLoad(file.c_str()) : nullptr;
    if (!voice)
        damaged_.insert(file);
    return voice;
}

cst_voice* FliteLibrary::LoadVoice(const std::string& key) const
{
    void* const handle = dlopen((Folder() / VoiceLibrary(key)).c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle)
        return nullptr;
    using Register = cst_voice* (*)(const char* folder);
    const auto registerVoice = reinterpret_cast<Register>(dlsym(handle, ("register_cmu_us_" + key).c_str()));
    return registerVoice ? registerVoice(nullptr) : nullptr;
}

} // namespace voxmate::speech
