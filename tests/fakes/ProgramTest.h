// What tests of modules and forms start from: a program over fakes, with what it owns at hand under its own names.
#pragma once

#include "modules/BrowseFolder.h"
#include "modules/Program.h"
#include "tests/fakes/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace voxmate
{

/// A program's parts under their own names.
class ProgramNames
{
public:
    explicit ProgramNames(Program& owner) : program(owner) {}

    Program& program;
    SettingsRecord& Settings = program.Settings;
    AgentCharacter*& Character = program.Character;
    bool& StartedUp = program.StartedUp;
    Boolean& StopRequested = program.StopRequested;
    std::uint32_t& StopCount = program.StopCount;
    std::int32_t& SpeakTimeCounter = program.SpeakTimeCounter;
    double& ShellTaskId = program.ShellTaskId;
    std::string& WindowsDir = program.WindowsDir;
    std::uint8_t& AlertSlotMask = program.AlertSlotMask;
    Boolean& RegFailed = program.Registry.RegFailed;
    Boolean& BadKeyName = program.Registry.BadKeyName;
    std::int32_t& LastRegResult = program.Registry.LastRegResult;
    std::string& MessageText = program.Messages.MessageText;
    Boolean& IsBusy = program.Messages.IsBusy;
    std::int16_t& CurrentRoutineId = program.Messages.CurrentRoutineId;
    std::string& SearchPath = program.Characters.SearchPath;
    std::int16_t& CharacterCount = program.Characters.CharacterCount;
    decltype(Characters::AnimationNames)& AnimationNames = program.Characters.AnimationNames;
    AgentRequestPtr& AnimateRequest = program.Characters.AnimateRequest;
    std::function<void()>& AnimateEnded = program.Characters.AnimateEnded;
    decltype(Voice::EngineNames)& EngineNames = program.Voice.EngineNames;
    decltype(Voice::EngineIds)& EngineIds = program.Voice.EngineIds;
    AgentRequestPtr& LastSpeakRequest = program.Voice.LastSpeakRequest;
    AgentRequestPtr& LastPlayRequest = program.Voice.LastPlayRequest;
    AgentRequestPtr& CurrentRequest = program.Reading.CurrentRequest;
    std::vector<std::string_view>& Tips = program.Tips.All;
    std::int32_t& CurrentTip = program.Tips.CurrentTip;
    std::string& ReminderFilePath = program.Reminders.File.ReminderFilePath;
    std::string& ReminderTempPath = program.Reminders.File.ReminderTempPath;
    std::vector<std::string>& RemTitles = program.Reminders.List.RemTitles;
    std::vector<std::int16_t>& RemDays = program.Reminders.List.RemDays;
    std::vector<std::int16_t>& RemMonths = program.Reminders.List.RemMonths;
    std::vector<std::int16_t>& RemYears = program.Reminders.List.RemYears;
    std::vector<std::int16_t>& RemHours = program.Reminders.List.RemHours;
    std::vector<std::int16_t>& RemMinutes = program.Reminders.List.RemMinutes;
    std::vector<std::string>& RemDescs = program.Reminders.List.RemDescs;
    std::vector<std::string>& RemDone = program.Reminders.List.RemDone;
    std::int16_t& RemCount = program.Reminders.List.RemCount;
    Boolean& RemindersValid = program.Reminders.List.RemindersValid;
    std::vector<Answer>& RemUnsaved = program.Reminders.List.RemUnsaved;
    std::vector<std::unique_ptr<NoticeWindow>>& RemNoticeWindows = program.Scheduler.RemNoticeWindows;
    std::vector<std::unique_ptr<AlertWindow>>& RemAlertWindows = program.Scheduler.RemAlertWindows;

    /// The program ends and is started again, under the same main window.
    void BeginProgram()
    {
        Platform& platform = program.Host;
        MainWindow* window = program.Main;
        std::destroy_at(&program);
        std::construct_at(&program, platform)->Main = window;
    }
    /// The same, with the settings, the character and the places of the reminders' files that it had.
    void BeginAgain()
    {
        const SettingsRecord settings = Settings;
        AgentCharacter* const character = Character;
        const std::string file = ReminderFilePath;
        const std::string temp = ReminderTempPath;
        BeginProgram();
        Settings = settings;
        Character = character;
        ReminderFilePath = file;
        ReminderTempPath = temp;
    }
    void StartMain() { program.StartMain(); }
    void RunStartUp() { program.RunStartUp(); }
    void OpenUrl(const std::string& url) { program.OpenUrl(url); }
    std::string HelpPage(const std::string& name) { return program.HelpPage(name); }
    void LoadSettings() { voxmate::LoadSettings(program); }
    void ReportSettingsInError() { voxmate::ReportSettingsInError(program); }
    std::int16_t ReadIntSetting(const std::string& name, const std::string& displayName, std::int32_t min,
                                std::int32_t max, std::int16_t defaultValue)
    {
        return voxmate::ReadIntSetting(program, name, displayName, min, max, defaultValue);
    }

    void ParseKeyPath(std::string& path, std::uint32_t& root) { program.Registry.ParseKeyPath(path, root); }
    void CreateRegKey(const std::string& path) { program.Registry.CreateRegKey(path); }
    Variant ReadRegDword(const std::string& path, const std::string& name)
    {
        return program.Registry.ReadRegDword(path, name);
    }
    void WriteRegDword(const std::string& path, const std::string& name, std::int32_t value)
    {
        program.Registry.WriteRegDword(path, name, value);
    }
    Variant ReadRegString(const std::string& path, const std::string& name)
    {
        return program.Registry.ReadRegString(path, name);
    }
    void WriteRegString(const std::string& path, const std::string& name, const std::string& text)
    {
        program.Registry.WriteRegString(path, name, text);
    }

    template <class... Arguments>
    void ShowMessage(const Arguments&... arguments)
    {
        program.Messages.ShowMessage(arguments...);
    }
    void ReportError(std::int32_t number, const std::string& description, std::int16_t routineId)
    {
        program.Messages.ReportError(number, description, routineId);
    }
    template <class Body>
    void NumberedRoutine(std::int16_t routineId, Body body)
    {
        program.Messages.NumberedRoutine(routineId, body);
    }

    void FindCharacters(bool fromOptions) { program.Characters.FindCharacters(fromOptions); }
    void LoadCharacter(const std::string& name, bool atStartUp) { program.Characters.LoadCharacter(name, atStartUp); }
    bool TellDamagedCharacter(const std::string& message) { return program.Characters.TellDamagedCharacter(message); }
    void ApplyCharacterSettings() { program.Characters.ApplyCharacterSettings(); }
    void LoadSpeechEngines() { program.Voice.LoadSpeechEngines(); }
    void ChooseSpeechEngine(int number) { program.Voice.ChooseSpeechEngine(number); }
    bool SpeakText(std::string text, const std::string& animation)
    {
        return program.Voice.SpeakText(std::move(text), animation);
    }
    void OpenAndReadText() { program.Reading.OpenAndReadText(); }
    void OpenAndReadWord() { program.Reading.OpenAndReadWord(); }
    void OpenAndPlayWave() { program.Reading.OpenAndPlayWave(); }
    std::string FormatSpokenTime(std::int16_t in24Hour, bool omitSalutation)
    {
        return voxmate::FormatSpokenTime(program.Host.Time.Now(), in24Hour, omitSalutation);
    }
    void GreetAndIntroduce(bool atStartUp) { voxmate::GreetAndIntroduce(program, atStartUp); }
    std::string BrowseForFolder(const std::string& prompt)
    {
        return voxmate::BrowseForFolder(program.Host.Windows, prompt, Settings.CharacterPath);
    }

    void SeedTips(std::uint32_t seed) { program.Tips.SeedTips(seed); }
    void ShowTipOfTheDay(bool fromStartUp) { program.Tips.ShowTipOfTheDay(fromStartUp); }
    bool LoadTips(const std::string& path) { return program.Tips.LoadTips(path); }
    void PickRandomTip() { program.Tips.PickRandomTip(); }

    void LoadReminders(bool fillList, std::int16_t selectIndex)
    {
        program.Reminders.LoadReminders(fillList, selectIndex);
    }
    void SaveReminders(std::int16_t skipIndex) { program.Reminders.File.WriteReminders(skipIndex); }
    void AppendReminder(const Reminder& reminder) { program.Reminders.File.AppendRecords({Encoded(reminder)}); }
    bool TrySaveReminders(std::int16_t skipIndex) { return program.Reminders.TrySaveReminders(skipIndex); }
    bool TryAppendReminder(const Reminder& reminder) { return program.Reminders.TryAppendReminder(reminder); }
    void SaveLastAnswers() { program.Reminders.SaveLastAnswers(); }
    void RetryReminders() { program.Reminders.RetryReminders(); }
    void StoreReminder(std::int16_t id, const Reminder& reminder) { program.Reminders.List.Set(id, reminder); }
    void RemTimer_Timer() { program.Scheduler.RemTimer_Timer(); }
    void FinishReminder(std::int16_t id, bool snooze, std::int16_t minutes)
    {
        program.Scheduler.FinishReminder(id, snooze, minutes);
    }
    void EnableReminders() { program.Reminders.EnableReminders(); }
    void DisableReminders() { program.Reminders.DisableReminders(); }
    void ShowAllReminders() { program.Reminders.ShowAllReminders(); }
};

/// Has the fakes and a program over them.
struct FakeProgram {
    fakes::FakePlatform fake;
};

class ProgramTest : public ::testing::Test, protected FakeProgram, protected ProgramNames
{
protected:
    ProgramTest() : ProgramNames(fake.program) {}
};

} // namespace voxmate
