// Fakes of every platform interface. They share one log, so that a test sees calls in their order across interfaces.
#pragma once

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "modules/Program.h"
#include "platform/Platform.h"
#include "tests/fakes/FakeFiles.h"
#include "tests/fakes/FakeLog.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/FakeWindows.h"
#include "tests/fakes/FakeWord.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::fakes
{

class FakeSettingsStore : public SettingsStore
{
public:
    explicit FakeSettingsStore(Log& log) : log_(log) {}

    struct Value {
        std::uint32_t type;
        std::string data;
        bool operator==(const Value&) const = default;
    };
    /// The keys that exist and their values.
    std::map<std::string, std::map<std::string, Value>> keys;
    bool logCalls = false;
    std::map<std::string, std::int32_t> failures; ///< call name -> result code
    int openHandles = 0;

    void SetDword(const std::string& name, std::uint32_t number)
    {
        std::string data;
        for (unsigned shift = 0; shift < 32; shift += 8)
            data.push_back(static_cast<char>(number >> shift));
        keys[settingsSubKey][name] = {REG_DWORD, data};
    }
    void SetText(const std::string& name, const std::string& data) { keys[settingsSubKey][name] = {REG_SZ, data}; }
    bool Has(const std::string& name) { return keys[settingsSubKey].contains(name); }
    Value At(const std::string& name) { return keys[settingsSubKey].at(name); }
    std::int64_t Dword(const std::string& name)
    {
        const Value value = At(name);
        if (value.type != REG_DWORD || value.data.size() != 4)
            return -1;
        std::uint32_t number = 0;
        for (std::size_t i = 4; i > 0; --i)
            number = number << 8 | static_cast<std::uint8_t>(value.data[i - 1]);
        return number;
    }

    std::int32_t RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key) override
    {
        Record("RegCreateKeyA " + Hex(root) + " " + subKey);
        if (const auto code = Failure("RegCreateKeyA"))
            return *code;
        keys[subKey];
        return Give(subKey, key);
    }
    std::int32_t RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t options,
                               std::uint32_t access, std::uint32_t& key) override
    {
        Record("RegOpenKeyExA " + Hex(root) + " " + subKey + " " + std::to_string(options) + " " + Hex(access));
        if (const auto code = Failure("RegOpenKeyExA"))
            return *code;
        return keys.contains(subKey) ? Give(subKey, key) : ERROR_FILE_NOT_FOUND;
    }
    std::int32_t RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                  std::span<std::uint8_t> data, std::uint32_t& size) override
    {
        Record("RegQueryValueExA " + name + " " + std::to_string(type) + " " + std::to_string(size));
        if (const auto code = Failure("RegQueryValueExA"))
            return *code;
        const auto& values = keys[handles_.at(key)];
        const auto found = values.find(name);
        if (found == values.end())
            return ERROR_FILE_NOT_FOUND;
        const std::string& stored = found->second.data;
        type = found->second.type;
        const auto room = std::min<std::size_t>(size, data.size());
        size = static_cast<std::uint32_t>(stored.size());
        if (stored.size() > room)
            return ERROR_MORE_DATA;
        std::copy(stored.begin(), stored.end(), data.begin());
        return ERROR_SUCCESS;
    }
    std::int32_t RegSetValueExA(std::uint32_t key, const std::string& name, std::uint32_t reserved, std::uint32_t type,
                                std::span<const std::uint8_t> data) override
    {
        Record("RegSetValueExA " + name + " " + std::to_string(reserved) + " " + std::to_string(type) + " " +
               std::to_string(data.size()) + " bytes");
        if (const auto code = Failure("RegSetValueExA"))
            return *code;
        keys[handles_.at(key)][name] = {type, std::string(data.begin(), data.end())};
        return ERROR_SUCCESS;
    }
    std::int32_t RegCloseKey(std::uint32_t key) override
    {
        Record("RegCloseKey");
        openHandles -= static_cast<int>(handles_.erase(key));
        return ERROR_SUCCESS;
    }

private:
    static constexpr const char* settingsSubKey = "SOFTWARE\\Voxmate";
    Log& log_;
    std::map<std::uint32_t, std::string> handles_;
    std::uint32_t next_ = 1;

    void Record(const std::string& call)
    {
        if (logCalls)
            log_.push_back(call);
    }
    std::optional<std::int32_t> Failure(const std::string& call)
    {
        const auto found = failures.find(call);
        if (found == failures.end())
            return std::nullopt;
        return found->second;
    }
    std::int32_t Give(const std::string& subKey, std::uint32_t& key)
    {
        key = next_++;
        handles_[key] = subKey;
        ++openHandles;
        return ERROR_SUCCESS;
    }
};

class FakeRequest : public AgentRequest
{
public:
    RequestStatus Status() const override { return status; }
    RequestStatus status = RequestStatus::Pending;
};

class FakeCharacter : public AgentCharacter, AgentBalloon, AgentCommands
{
public:
    FakeCharacter(Log& log, std::string name) : log_(log), name_(std::move(name)) {}

    std::vector<std::string> animations{"RestPose", "Show", "Hide", "Greet"};
    int originalWidth = 128;
    int originalHeight = 160;
    std::vector<std::uint32_t> styles; ///< every style that was set, in order
    std::string fontName;
    int fontSize = 0;
    int width = 0;
    int height = 0;
    std::string ttsModeId;
    std::vector<std::string> commands;
    bool visible = false;

    AgentRequestPtr Show(bool fast) override
    {
        visible = true;
        return Made(std::string("Show") + (fast ? " fast" : ""));
    }
    AgentRequestPtr Hide(bool fast) override
    {
        visible = false;
        return Made(std::string("Hide") + (fast ? " fast" : ""));
    }
    AgentRequestPtr Play(const std::string& animation) override { return Made("Play " + animation); }
    AgentRequestPtr Speak(std::string text, std::string url) override
    {
        return Made("Speak " + text + (url.empty() ? "" : " from " + url));
    }
    void Stop(const AgentRequestPtr&) override { log_.push_back("Stop"); }
    void StopAll(const std::string& types) override { log_.push_back("StopAll " + types); }
    AgentBalloon& Balloon() override { return *this; }
    AgentCommands& Commands() override { return *this; }
    int Width() const override { return width; }
    int Height() const override { return height; }
    void SetWidth(int value) override { width = value; }
    void SetHeight(int value) override { height = value; }
    int OriginalWidth() const override { return originalWidth; }
    int OriginalHeight() const override { return originalHeight; }
    std::string TTSModeID() const override { return ttsModeId; }
    void SetTTSModeID(const std::string& id) override
    {
        ttsModeId = id;
        log_.push_back("TTSModeID " + id);
    }
    std::vector<std::string> AnimationNames() const override { return animations; }
    bool Visible() const override { return visible; }

    std::uint32_t Style() const override { return styles.empty() ? 0 : styles.back(); }
    void SetStyle(std::uint32_t style) override { styles.push_back(style); }
    std::string FontName() const override { return fontName; }
    void SetFontName(const std::string& name) override { fontName = name; }
    int FontSize() const override { return fontSize; }
    void SetFontSize(int points) override { fontSize = points; }

    void Add(const std::string& name, const std::string& caption, const std::string& voice, bool enabled,
             bool isVisible) override
    {
        commands.push_back(name + "|" + caption + "|" + voice + (enabled ? "|enabled" : "") +
                           (isVisible ? "|visible" : ""));
    }

    AgentRequestPtr last; ///< what the last call returned

private:
    Log& log_;
    std::string name_;
    AgentRequestPtr Made(const std::string& call)
    {
        log_.push_back(call);
        last = std::make_shared<FakeRequest>();
        return last;
    }
};

class FakeAgent : public AgentControl
{
public:
    explicit FakeAgent(Log& log) : log_(log) {}

    AudioStatus status = AudioStatus::Available;
    std::map<std::string, std::unique_ptr<FakeCharacter>> loaded;
    std::optional<RuntimeError> loadError;
    std::function<void(FakeCharacter&)> prepare; ///< shapes a character when it is loaded
    std::optional<bool> soundEffects;

    void Load(const std::string& name, const std::string& path) override
    {
        log_.push_back("Load " + name + " " + path);
        if (loadError)
            throw RuntimeError(*loadError);
        loaded[name] = std::make_unique<FakeCharacter>(log_, name);
        if (prepare)
            prepare(*loaded[name]);
    }
    void Unload(const std::string& name) override
    {
        log_.push_back("Unload " + name);
        loaded.erase(name);
    }
    AgentCharacter& Characters(const std::string& name) override
    {
        if (!loaded.contains(name))
            throw ObjectNotSet();
        return *loaded[name];
    }
    AudioStatus AudioOutputStatus() override { return status; }
    void SetSoundEffectsOn(bool on) override { soundEffects = on; }

private:
    Log& log_;
};

class FakeSpeech : public SpeechControl
{
public:
    std::vector<std::pair<std::string, std::string>> engines; ///< name, identifier
    std::optional<RuntimeError> error;
    int CountEngines() override
    {
        if (error)
            throw RuntimeError(*error);
        return static_cast<int>(engines.size());
    }
    std::string ModeName(int index) override { return engines.at(static_cast<std::size_t>(index - 1)).first; }
    std::string ModeID(int index) override { return engines.at(static_cast<std::size_t>(index - 1)).second; }
};

class FakeProcess : public Process
{
public:
    explicit FakeProcess(Log& log) : log_(log) {}

    std::string windowsDirectory = "C:\\WINDOWS";
    bool previousInstance = false;
    std::vector<std::string> commands;
    bool shellFails = false;

    std::string ProgramDirectory() override { return "C:\\Voxmate"; }
    std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) override
    {
        if (windowsDirectory.size() <= size)
            buffer.replace(0, windowsDirectory.size(), windowsDirectory);
        return static_cast<std::uint32_t>(windowsDirectory.size());
    }
    bool PreviousInstance() override { return previousInstance; }
    double Shell(const std::string& command, int windowStyle) override
    {
        commands.push_back(command + " style " + std::to_string(windowStyle));
        log_.push_back("Shell " + command);
        if (shellFails)
            throw FileNotFound();
        return 4711;
    }

protected:
    void EndProcess() override
    {
        log_.push_back("EndProgram");
        throw ProgramEnded{};
    }

private:
    Log& log_;
};

class FakeClock : public Clock
{
public:
    DateTime now{1975, 3, 17, 14, 5, 9};
    DateTime Now() override { return now; }
    std::string ShortDate(const DateTime& date) override
    {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%02d/%02d/%04d", date.day, date.month, date.year);
        return text.data();
    }
};

/// All of them, wired into one Platform, with two engines and two characters in place, and a program over it.
struct FakePlatform {
    Log log;
    FakeSettingsStore store{log};
    FakeAgent agent{log};
    FakeSpeech speech;
    FakeWindows windows{log};
    FakeFiles files;
    FakeProcess process{log};
    FakeClock clock;
    FakeWord word{log};
    Platform platform{store, agent, speech, windows, files, process, clock, word};
    Program program{platform};

    FakePlatform()
    {
        speech.engines = {{"First Voice", "11111111-0000-8000-8000-000000000001"},
                          {"Second Voice", "22222222-0000-8000-8000-000000000002"}};
        AddCharacters("C:\\Chars\\", {"Alfa", "Bravo"});
    }
    void AddCharacters(const std::string& folder, const std::vector<std::string>& names)
    {
        files.folders.insert(folder);
        for (const std::string& name : names)
            files.files.insert(folder + name + ".acs");
    }
    FakeCharacter& Loaded(const std::string& name) { return *agent.loaded.at(name); }

    /// Puts every setting of the catalogue in place with its default, and a characters folder, a character and an
    /// engine that exist.
    void StoreDefaults()
    {
        for (const SettingRow& row : SettingsCatalogue()) {
            if (std::holds_alternative<std::int16_t SettingsRecord::*>(row.field))
                store.SetDword(row.name, static_cast<std::uint32_t>(row.defaultNumber));
            else
                store.SetText(row.name, row.defaultText);
        }
        store.SetText("CharacterPath", "C:\\Chars\\");
        store.SetText("LastCharacter", "Alfa");
        store.SetText("LastSpeechEngine", "First Voice");
    }
    /// While the next message is spoken another one comes, with a box of its own.
    void LetAnotherMessageCome()
    {
        windows.whilePending = [this] {
            windows.whilePending = nullptr;
            program.Characters.LoadCharacter("Nobody", false);
        };
    }
    /// Runs something that ends the program; true when it did.
    template <class Body>
    bool Ends(Body body)
    {
        try {
            body();
        } catch (const ProgramEnded&) {
            return true;
        }
        return false;
    }
};

} // namespace voxmate::fakes
