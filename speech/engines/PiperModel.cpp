#include "speech/engines/PiperModel.h"

#include "base/Text.h"
#include "platform/SharedLibrary.h"
#include "speech/engines/EspeakLibrary.h"
#include "speech/engines/OnnxGraph.h"
#include "speech/engines/PiperVoiceFile.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <fstream>
#include <mutex>
#include <new>
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
// The last part of the network, which makes samples of what the first has made of the numbers, is asked for pieces of
// this many steps: the first is soon there, and the larger ones after it cost less.
constexpr const char* LastPart = "/dec/";
constexpr const char* LastPartsEntry = "/dec/conv_pre/Conv";
constexpr std::array<std::size_t, 3> PieceSteps{48, 96, 192};
// How many steps before and behind a piece change its samples: 14 for the largest of these voices (the reach of its
// convolutions), rounded up.
constexpr std::size_t Reach = 16;
// In characters: the runtime's reasons name all that is around a fault.
constexpr std::size_t LongestReason = 200;
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

    // The same for calls that take much memory. Where there is none, that is thrown as everywhere else: the library
    // only says so within a longer message.
    bool DoneIfThereIsMemory(OrtStatus* status, std::string& error) const
    {
        const bool done = Done(status, &error);
        if (!done && error.find("bad_alloc") != std::string::npos)
            throw std::bad_alloc();
        return done;
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
    explicit Handle(void (*release)(Type*), Type* object = nullptr) : release_(release), object_(object) {}
    ~Handle()
    {
        if (object_)
            release_(object_);
    }
    Handle(Handle&& other) noexcept : release_(other.release_), object_(std::exchange(other.object_, nullptr)) {}
    Handle& operator=(Handle&&) = delete;
    Type** operator&() { return &object_; } // NOLINT(google-runtime-operator): for the runtime's results
    Type* Get() const { return object_; }

private:
    void (*release_)(Type*);
    Type* object_;
};

/// A network that is ready to run.
class Session
{
public:
    explicit Session(const Runtime& runtime)
        : runtime_(runtime), api_(*runtime_.api), options_(api_.ReleaseSessionOptions), session_(api_.ReleaseSession)
    {
    }

    // False with the reason when the network cannot be used.
    bool Open(const std::string& bytes, std::string& why)
    {
        return runtime_.Done(api_.CreateSessionOptions(&options_), &why) &&
               runtime_.Done(api_.SetIntraOpNumThreads(options_.Get(), Threads), &why) &&
               runtime_.Done(api_.SetInterOpNumThreads(options_.Get(), 1), &why) &&
               // Threads that wait in a busy loop would take a core from everything else.
               runtime_.Done(api_.AddSessionConfigEntry(options_.Get(), "session.intra_op.allow_spinning", "0"),
                             &why) &&
               // An arena keeps the most memory that any clause has taken.
               runtime_.Done(api_.DisableCpuMemArena(options_.Get()), &why) &&
               runtime_.DoneIfThereIsMemory(api_.CreateSessionFromArray(runtime_.environment, bytes.data(),
                                                                        bytes.size(), options_.Get(), &session_),
                                            why);
    }

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

    // Runs the network; false when it fails or `run` is ended.
    bool Run(const OrtRunOptions* run, std::span<const std::string> inputNames, std::span<const OrtValue* const> inputs,
             std::span<const std::string> outputNames, std::vector<Handle<OrtValue>>& outputs)
    {
        const auto pointers = [](std::span<const std::string> names) {
            std::vector<const char*> result;
            for (const std::string& name : names)
                result.push_back(name.c_str());
            return result;
        };
        std::vector<OrtValue*> values(outputNames.size());
        std::string why;
        const bool ran = runtime_.DoneIfThereIsMemory(
            api_.Run(session_.Get(), run, pointers(inputNames).data(), inputs.data(), inputs.size(),
                     pointers(outputNames).data(), outputNames.size(), values.data()),
            why);
        outputs.clear();
        for (OrtValue* const value : values)
            outputs.emplace_back(api_.ReleaseValue, value);
        return ran;
    }

private:
    const Runtime& runtime_;
    const OrtApi& api_;
    Handle<OrtSessionOptions> options_;
    Handle<OrtSession> session_;
};

class OnnxPiperModel final : public PiperModel
{
public:
    explicit OnnxPiperModel(const Runtime& runtime)
        : runtime_(runtime), api_(*runtime_.api), first_(runtime), second_(runtime), memory_(api_.ReleaseMemoryInfo)
    {
    }

    // False with the reason when the network cannot be used.
    bool Open(std::string bytes, std::string& why)
    {
        if (!runtime_.Done(api_.CreateCpuMemoryInfo(OrtArenaAllocator, OrtMemTypeDefault, &memory_), &why))
            return false;
        // The only rounding up in such a network is that of the phonemes' lengths.
        const std::optional<std::string> lengths = InputOfOnly(bytes, "Ceil");
        std::vector<std::string> outputs;
        std::optional<DividedNetwork> divided = DivideNetwork(bytes, LastPart, LastPartsEntry, lengths.value_or(""));
        if (divided && second_.Open(divided->second, why)) {
            bytes = std::move(divided->first);
            between_ = std::move(divided->between);
            samples_ = second_.Names(false);
            outputs = between_;
        } else if (lengths) {
            bytes += AsOutput(*lengths);
        }
        if (!first_.Open(bytes, why))
            return false;
        std::vector<std::string> inputs = first_.Names(true);
        std::sort(inputs.begin(), inputs.end());
        std::vector<std::string> expected = InputNames;
        if (inputs.size() == expected.size() + 1)
            expected.emplace_back("sid");
        inputs_ = expected;
        std::sort(expected.begin(), expected.end());
        if (between_.empty()) {
            outputs = first_.Names(false);
            if (lengths)
                std::erase(outputs, *lengths);
            samples_ = outputs;
        }
        if (inputs != expected || samples_.size() != 1) {
            why = "it is a network of another kind";
            return false;
        }
        outputs_ = std::move(outputs);
        lengths_ = outputs_.size();
        if (lengths && std::find(outputs_.begin(), outputs_.end(), *lengths) == outputs_.end())
            outputs_.push_back(*lengths);
        return true;
    }

    bool Speak(std::span<const std::int64_t> numbers, const Scales& scales, std::int64_t speaker,
               const std::function<bool()>& wanted, const Take& take) override
    {
        std::vector<std::int64_t> input(numbers.begin(), numbers.end());
        std::int64_t length = static_cast<std::int64_t>(input.size());
        std::array<float, 3> three{scales.noise, scales.length, scales.width};
        const std::array<std::int64_t, 2> inputShape{1, length};
        const std::array<std::int64_t, 1> one{1};
        const std::array<std::int64_t, 1> threeShape{3};
        std::array values{Handle<OrtValue>(api_.ReleaseValue), Handle<OrtValue>(api_.ReleaseValue),
                          Handle<OrtValue>(api_.ReleaseValue), Handle<OrtValue>(api_.ReleaseValue)};
        if (!Tensor(input.data(), input.size() * sizeof(std::int64_t), inputShape, ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64,
                    values[0]) ||
            !Tensor(&length, sizeof length, one, ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64, values[1]) ||
            !Tensor(three.data(), sizeof three, threeShape, ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT, values[2]) ||
            !Tensor(&speaker, sizeof speaker, one, ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64, values[3]))
            return false;
        const std::array<const OrtValue*, 4> inputs{values[0].Get(), values[1].Get(), values[2].Get(), values[3].Get()};
        Handle<OrtRunOptions> run(api_.ReleaseRunOptions);
        if (!runtime_.Done(api_.CreateRunOptions(&run)))
            return false;
        // Another thread asks whether the sound is still wanted while the network runs.
        const std::jthread watch([&](const std::stop_token& end) {
            std::mutex mutex;
            std::unique_lock lock(mutex);
            std::condition_variable_any wake;
            while (!end.stop_requested() && wanted())
                wake.wait_for(lock, end, Watch, [] { return false; });
            if (!end.stop_requested())
                runtime_.Done(api_.RunOptionsSetTerminate(run.Get()));
        });
        std::vector<Handle<OrtValue>> outputs;
        if (!first_.Run(run.Get(), inputs_, std::span(inputs).first(inputs_.size()), outputs_, outputs))
            return false;
        Piece piece;
        if (outputs.size() > lengths_)
            piece.steps = StepsOf(outputs[lengths_].Get(), numbers.size());
        if (!between_.empty())
            return SpeakPieces(run.Get(), outputs, piece, take);
        piece.samples = Floats(outputs[0].Get());
        piece.all = piece.samples.size();
        return !piece.samples.empty() && take(piece);
    }

private:
    inline static const std::vector<std::string> InputNames{"input", "input_lengths", "scales"};

    // Has the second part of the network make samples, step by step, of what the first has made: `steps` values each of
    // several channels, and further values that are the same for all steps.
    bool SpeakPieces(const OrtRunOptions* run, const std::vector<Handle<OrtValue>>& between, Piece& piece,
                     const Take& take)
    {
        const std::vector<std::int64_t> shape = ShapeOf(between[0].Get());
        const std::span<const float> values = Floats(between[0].Get());
        if (shape.size() != 3 || shape[0] != 1 || values.empty())
            return false;
        const auto channels = static_cast<std::size_t>(shape[1]);
        const auto steps = static_cast<std::size_t>(shape[2]);
        std::vector<const OrtValue*> inputs;
        for (std::size_t i = 0; i < between_.size(); ++i)
            inputs.push_back(between[i].Get());
        std::vector<float> part;
        std::vector<Handle<OrtValue>> outputs;
        std::size_t perStep = 0;
        std::size_t number = 0;
        for (std::size_t from = 0, to = 0; from < steps; from = to) {
            to = std::min(steps, from + PieceSteps[std::min(number++, PieceSteps.size() - 1)]);
            // A short rest is not worth a run of its own.
            if (steps - to < Reach)
                to = steps;
            const std::size_t begin = from - std::min(from, Reach);
            const std::size_t end = std::min(steps, to + Reach);
            part.clear();
            for (std::size_t channel = 0; channel < channels; ++channel) {
                const std::span<const float> row = values.subspan(channel * steps + begin, end - begin);
                part.insert(part.end(), row.begin(), row.end());
            }
            const std::array<std::int64_t, 3> partShape{1, shape[1], static_cast<std::int64_t>(end - begin)};
            Handle<OrtValue> input(api_.ReleaseValue);
            if (!Tensor(part.data(), part.size() * sizeof(float), partShape, ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT,
                        input))
                return false;
            inputs[0] = input.Get();
            if (!second_.Run(run, between_, inputs, samples_, outputs))
                return false;
            const std::span<const float> samples = Floats(outputs[0].Get());
            if (perStep == 0)
                perStep = samples.size() / (end - begin);
            if (perStep == 0 || samples.size() != perStep * (end - begin) || perStep * steps > MostSamples)
                return false;
            piece.all = perStep * steps;
            piece.samples = samples.subspan((from - begin) * perStep, (to - from) * perStep);
            if (!take(piece))
                return false;
        }
        return true;
    }

    bool Tensor(void* data, std::size_t bytes, std::span<const std::int64_t> shape, ONNXTensorElementDataType type,
                Handle<OrtValue>& value) const
    {
        return runtime_.Done(
            api_.CreateTensorWithDataAsOrtValue(memory_.Get(), data, bytes, shape.data(), shape.size(), type, &value));
    }

    std::vector<std::int64_t> ShapeOf(OrtValue* value) const
    {
        Handle<OrtTensorTypeAndShapeInfo> info(api_.ReleaseTensorTypeAndShapeInfo);
        std::size_t count = 0;
        if (!value || !runtime_.Done(api_.GetTensorTypeAndShape(value, &info)) ||
            !runtime_.Done(api_.GetDimensionsCount(info.Get(), &count)))
            return {};
        std::vector<std::int64_t> shape(count);
        if (!runtime_.Done(api_.GetDimensions(info.Get(), shape.data(), count)))
            return {};
        return shape;
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

    std::span<const float> StepsOf(OrtValue* value, std::size_t numbers) const
    {
        const std::span<const float> steps = Floats(value);
        if (steps.size() == numbers &&
            std::all_of(steps.begin(), steps.end(), [](float step) { return step >= 0 && step < MostSteps; }) &&
            std::accumulate(steps.begin(), steps.end(), 0.0F) > 0)
            return steps;
        return {};
    }

    const Runtime& runtime_;
    const OrtApi& api_;
    Session first_;  ///< the whole network, or all of it but the last part
    Session second_; ///< the last part; not open where the network is not divided
    Handle<OrtMemoryInfo> memory_;
    std::vector<std::string> inputs_;
    std::vector<std::string> outputs_;
    std::size_t lengths_ = 0; ///< the place of the numbers' lengths in outputs_; behind it when they are not told
    std::vector<std::string> between_;
    std::vector<std::string> samples_; ///< the name of the output that has them
};

} // namespace

bool PiperModel::Available(const fs::path& folder)
{
    return !FindLibrary(folder).empty();
}

std::unique_ptr<PiperModel> PiperModel::Load(const fs::path& file, const fs::path& folder, std::string& why)
{
    const auto refuse = [&](const std::string& reason) {
        why = OneLine(file.string()) + ": " + reason;
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
    auto model = std::make_unique<OnnxPiperModel>(runtime);
    if (std::string reason; !model->Open(std::move(bytes), reason))
        return refuse("it cannot be used: " + std::string(Left(OneLine(reason), LongestReason)));
    return model;
}

} // namespace voxmate::speech
