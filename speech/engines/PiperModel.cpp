#include "speech/engines/PiperModel.h"

#include "platform/SharedLibrary.h"
#include "speech/engines/EspeakLibrary.h"
#include "speech/engines/OnnxGraph.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <fstream>
#include <mutex>
#include <numeric>
#include <stop_token>
#include <thread>
#include <utility>

#include <onnxruntime_c_api.h>

namespace voxmate::speech
{

namespace
{

namespace fs = std::filesystem;

// The interface that is asked for: ONNX Runtime 1.16, and each later one, has it.
constexpr std::uint32_t Interface = 16;
// The versions of the library that are looked for, newest first.
constexpr int NewestMinor = 40;
constexpr int OldestMinor = 16;
constexpr std::uintmax_t LargestModel = 1U << 30U;
constexpr int Threads = 2;
// Two minutes at 48 kHz for one clause would be a network of another kind, or gone wild.
constexpr std::size_t MostSamples = 5760000;
constexpr float MostSteps = 10000;
constexpr auto Watch = std::chrono::milliseconds(20);

// Where the library lies, or an empty path. The system's folder is the one that eSpeak NG's library was loaded from.
fs::path FindLibrary(const fs::path& own)
{
    std::error_code error;
    for (const fs::path& folder : {own, Espeak().Folder(), fs::path("/usr/local/lib")}) {
        if (folder.empty())
            continue;
        for (int minor = NewestMinor; minor >= OldestMinor; --minor)
            if (fs::path file = folder / ("libonnxruntime.so.1." + std::to_string(minor)); fs::exists(file, error))
                return file;
        if (fs::path file = folder / "libonnxruntime.so.1"; fs::exists(file, error))
            return file;
    }
    return {};
}

/// The runtime, loaded at the first use and kept.
struct Runtime {
    explicit Runtime(const fs::path& folder)
    {
        const fs::path file = FindLibrary(folder);
        const auto library = file.empty() ? std::nullopt : SharedLibrary::Load(file);
        const auto base = library ? library->Find<const OrtApiBase* (*)()>("OrtGetApiBase") : nullptr;
        if (!base)
            return;
        api = base()->GetApi(Interface);
        if (api && !Done(api->CreateEnv(ORT_LOGGING_LEVEL_FATAL, "voxmate", &environment)))
            api = nullptr;
    }

    // Whether a call succeeded. What it says otherwise is kept in `error`.
    bool Done(OrtStatus* status, std::string* error = nullptr) const
    {
        if (!status)
            return true;
        if (error)
            *error = api->GetErrorMessage(status);
        api->ReleaseStatus(status);
        return false;
    }

    const OrtApi* api = nullptr;
    OrtEnv* environment = nullptr;
};

// From the first call on, whichever folder a later one names: a process can have one runtime.
const Runtime& TheRuntime(const fs::path& folder)
{
    // Never destroyed: threads of the library may outlive main.
    static const Runtime& runtime = *new Runtime(folder);
    return runtime;
}

/// An object of the runtime, released at its end.
template <class Type>
class Handle
{
public:
    explicit Handle(void (*release)(Type*)) : release_(release) {}
    ~Handle()
    {
        if (object_)
            release_(object_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Type** operator&() { return &object_; } // NOLINT(google-runtime-operator): for the runtime's results
    Type* Get() const { return object_; }

private:
    void (*release_)(Type*);
    Type* object_ = nullptr;
};

class OnnxPiperModel final : public PiperModel
{
public:
    explicit OnnxPiperModel(const Runtime& runtime)
        : runtime_(runtime), api_(*runtime_.api), options_(api_.ReleaseSessionOptions), session_(api_.ReleaseSession),
          memory_(api_.ReleaseMemoryInfo)
    {
    }

    // False with the reason when the network cannot be used.
    bool Open(const std::string& bytes, const std::optional<std::string>& lengths, std::string& why)
    {
        if (!runtime_.Done(api_.CreateSessionOptions(&options_), &why) ||
            !runtime_.Done(api_.SetIntraOpNumThreads(options_.Get(), Threads), &why) ||
            !runtime_.Done(api_.SetInterOpNumThreads(options_.Get(), 1), &why) ||
            // Threads that wait in a busy loop would take a core from everything else.
            !runtime_.Done(api_.AddSessionConfigEntry(options_.Get(), "session.intra_op.allow_spinning", "0"), &why) ||
            // An arena keeps the most memory that any clause has taken.
            !runtime_.Done(api_.DisableCpuMemArena(options_.Get()), &why) ||
            !runtime_.Done(api_.CreateCpuMemoryInfo(OrtArenaAllocator, OrtMemTypeDefault, &memory_), &why) ||
            !runtime_.Done(api_.CreateSessionFromArray(runtime_.environment, bytes.data(), bytes.size(), options_.Get(),
                                                       &session_),
                           &why))
            return false;
        std::vector<std::string> inputs = Names(true);
        std::vector<std::string> outputs = Names(false);
        std::sort(inputs.begin(), inputs.end());
        several_ = inputs.size() == 4;
        std::vector<std::string> expected{"input", "input_lengths", "scales"};
        if (several_)
            expected.emplace_back("sid");
        std::sort(expected.begin(), expected.end());
        if (lengths)
            std::erase(outputs, *lengths);
        if (inputs != expected || outputs.size() != 1) {
            why = "it is a network of another kind";
            return false;
        }
        output_ = outputs.front();
        lengths_ = lengths.value_or("");
        return true;
    }

    std::optional<Sound> Speak(std::span<const std::int64_t> numbers, const Scales& scales, std::int64_t speaker,
                               const std::function<bool()>& wanted) override
    {
        std::vector<std::int64_t> input(numbers.begin(), numbers.end());
        std::int64_t length = static_cast<std::int64_t>(input.size());
        std::array<float, 3> three{scales.noise, scales.length, scales.width};
        const std::array<std::int64_t, 2> inputShape{1, length};
        const std::array<std::int64_t, 1> one{1};
        const std::array<std::int64_t, 1> threeShape{3};
        Handle<OrtValue> values[4]{Handle<OrtValue>(api_.ReleaseValue), Handle<OrtValue>(api_.ReleaseValue),
                                   Handle<OrtValue>(api_.ReleaseValue), Handle<OrtValue>(api_.ReleaseValue)};
        if (!Tensor(input.data(), input.size() * sizeof(std::int64_t), inputShape, ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64,
                    values[0]) ||
            !Tensor(&length, sizeof length, one, ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64, values[1]) ||
            !Tensor(three.data(), sizeof three, threeShape, ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT, values[2]) ||
            !Tensor(&speaker, sizeof speaker, one, ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64, values[3]))
            return std::nullopt;
        const std::array<const char*, 4> inputNames{"input", "input_lengths", "scales", "sid"};
        const std::array<const OrtValue*, 4> inputs{values[0].Get(), values[1].Get(), values[2].Get(), values[3].Get()};
        const std::array<const char*, 2> outputNames{output_.c_str(), lengths_.c_str()};
        std::array<OrtValue*, 2> outputs{};
        const bool ran = Run(inputNames.data(), inputs.data(), several_ ? 4U : 3U, outputNames.data(), outputs.data(),
                             lengths_.empty() ? 1U : 2U, wanted);
        std::optional<Sound> sound;
        if (ran)
            sound = SoundOf(outputs, numbers.size());
        for (OrtValue* const value : outputs)
            if (value)
                api_.ReleaseValue(value);
        return sound;
    }

private:
    std::vector<std::string> Names(bool inputs) const
    {
        std::vector<std::string> names;
        OrtAllocator* allocator = nullptr;
        std::size_t count = 0;
        if (!runtime_.Done(api_.GetAllocatorWithDefaultOptions(&allocator)) ||
            !runtime_.Done(inputs ? api_.SessionGetInputCount(session_.Get(), &count)
                                  : api_.SessionGetOutputCount(session_.Get(), &count)))
            return names;
        for (std::size_t i = 0; i < count; ++i) {
            char* name = nullptr;
            if (!runtime_.Done(inputs ? api_.SessionGetInputName(session_.Get(), i, allocator, &name)
                                      : api_.SessionGetOutputName(session_.Get(), i, allocator, &name)))
                continue;
            names.emplace_back(name);
            runtime_.Done(api_.AllocatorFree(allocator, name));
        }
        return names;
    }

    bool Tensor(void* data, std::size_t bytes, std::span<const std::int64_t> shape, ONNXTensorElementDataType type,
                Handle<OrtValue>& value) const
    {
        return runtime_.Done(
            api_.CreateTensorWithDataAsOrtValue(memory_.Get(), data, bytes, shape.data(), shape.size(), type, &value));
    }

    // Runs the network while another thread asks whether its sound is still wanted.
    bool Run(const char* const* inputNames, const OrtValue* const* inputs, std::size_t inputCount,
             const char* const* outputNames, OrtValue** outputs, std::size_t outputCount,
             const std::function<bool()>& wanted)
    {
        Handle<OrtRunOptions> run(api_.ReleaseRunOptions);
        if (!runtime_.Done(api_.CreateRunOptions(&run)))
            return false;
        const std::jthread watch([&](const std::stop_token& end) {
            std::mutex mutex;
            std::unique_lock lock(mutex);
            std::condition_variable_any wake;
            while (!end.stop_requested() && wanted())
                wake.wait_for(lock, end, Watch, [] { return false; });
            if (!end.stop_requested())
                runtime_.Done(api_.RunOptionsSetTerminate(run.Get()));
        });
        return runtime_.Done(
            api_.Run(session_.Get(), run.Get(), inputNames, inputs, inputCount, outputNames, outputCount, outputs));
    }

    // The numbers of an output; empty when they are of another kind.
    std::span<const float> Floats(OrtValue* value) const
    {
        Handle<OrtTensorTypeAndShapeInfo> info(api_.ReleaseTensorTypeAndShapeInfo);
        ONNXTensorElementDataType type = ONNX_TENSOR_ELEMENT_DATA_TYPE_UNDEFINED;
        std::size_t count = 0;
        void* data = nullptr;
        if (!value || !runtime_.Done(api_.GetTensorTypeAndShape(value, &info)) ||
            !runtime_.Done(api_.GetTensorElementType(info.Get(), &type)) ||
            type != ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT ||
            !runtime_.Done(api_.GetTensorShapeElementCount(info.Get(), &count)) || count > MostSamples ||
            !runtime_.Done(api_.GetTensorMutableData(value, &data)))
            return {};
        return {static_cast<const float*>(data), count};
    }

    std::optional<Sound> SoundOf(const std::array<OrtValue*, 2>& outputs, std::size_t numbers) const
    {
        const std::span<const float> samples = Floats(outputs[0]);
        if (samples.empty())
            return std::nullopt;
        Sound sound;
        sound.samples.assign(samples.begin(), samples.end());
        const std::span<const float> steps = Floats(outputs[1]);
        if (steps.size() == numbers &&
            std::all_of(steps.begin(), steps.end(), [](float step) { return step >= 0 && step < MostSteps; }) &&
            std::accumulate(steps.begin(), steps.end(), 0.0F) > 0)
            sound.steps.assign(steps.begin(), steps.end());
        return sound;
    }

    const Runtime& runtime_;
    const OrtApi& api_;
    Handle<OrtSessionOptions> options_;
    Handle<OrtSession> session_;
    Handle<OrtMemoryInfo> memory_;
    bool several_ = false;
    std::string output_;
    std::string lengths_;
};

} // namespace

bool PiperModel::Available(const fs::path& folder)
{
    return !FindLibrary(folder).empty();
}

std::unique_ptr<PiperModel> PiperModel::Load(const fs::path& file, const fs::path& folder, std::string& why)
{
    const auto refuse = [&](const std::string& reason) {
        why = file.string() + ": " + reason;
        return nullptr;
    };
    const Runtime& runtime = TheRuntime(folder);
    if (!runtime.api)
        return refuse("ONNX Runtime, which speaks it, cannot be loaded.");
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (error || size == 0 || size > LargestModel)
        return refuse(error ? "it cannot be read." : "its size is not that of a voice.");
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (!std::ifstream(file, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(size)))
        return refuse("it cannot be read.");
    // The only rounding up in such a network is that of the phonemes' lengths.
    const std::optional<std::string> lengths = InputOfOnly(bytes, "Ceil");
    if (lengths)
        bytes += AsOutput(*lengths);
    auto model = std::make_unique<OnnxPiperModel>(runtime);
    if (std::string reason; !model->Open(bytes, lengths, reason))
        return refuse("it cannot be used: " + reason);
    return model;
}

} // namespace voxmate::speech
