#include "extras/Pronunciations.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "extras/Window.h"

#include <memory>
#include <utility>
#include <vector>

namespace voxmate
{

namespace
{

constexpr const char* ShortensName = "wording.shortens";
constexpr const char* ByLanguageName = "voice.bylanguage";
constexpr const char* Title = "Voxmate - Pronunciation";
constexpr std::size_t LongestText = 200; // characters

} // namespace

PronunciationWindow::PronunciationWindow(Program& program, PronunciationList& list, StateStore& state, Event changed)
    : Form(program.Host.Windows, "frmPronunciation"), program_(program), list_(list), changed_(std::move(changed))
{
    Caption = Title;
    Border = BorderStyle::Sizable;
    FirstFocus = &txtWritten;
    lstWords.AccessibleName = "Words that are said otherwise";
    lstWords.PlaceholderText = "Enter below a word that is said wrongly, and how it is to be said.";
    lstWords.Sorted = true;
    lstWords.FullRowSelect = true;
    lblWritten.Buddy = &txtWritten;
    lblSaid.Buddy = &txtSaid;
    txtWritten.PlaceholderText = "NAS";
    txtSaid.PlaceholderText = "network storage";
    txtWritten.MaxLength = txtSaid.MaxLength = LongestText;
    txtWritten.AccessibleName = "Written:";
    txtWritten.ToolTipText = "An asterisk stands for a part of a word: *.exe is said as * dot exe.";
    cmdSet.IsDefault = true;
    cmdClose.IsCancel = true;
    Arrangement = Column({
        Item(lstWords).Stretch(1).Min(420, 240),
        Grid(2, {Item(lblWritten), Item(lblSaid), Item(txtWritten).Stretch(1), Item(txtSaid).Stretch(1)}),
        Row({Item(cmdHear), Item(cmdSet), Item(cmdRemove), Space(), Item(cmdClose)}),
    });
    KeepGeometry(*this, state, "pronunciation.geometry");

    lstWords.ItemClick = [this](std::size_t number) {
        const ListItem& item = lstWords.ListItems().at(number - 1);
        txtWritten.Text = item.TextOf(0);
        txtSaid.Text = item.TextOf(1);
        cmdRemove.Enabled = true;
    };
    cmdHear.Click = [this] {
        const WordingRule rule = Entered();
        program_.Voice.SpeakText(rule.Said.empty() ? rule.Written : rule.Said, "");
        // Enter adds it.
        txtSaid.SetFocus();
    };
    cmdSet.Click = [this] { Set(); };
    cmdRemove.Click = [this] { Remove(); };
    cmdClose.Click = [this] { UserClose(); };
}

void PronunciationWindow::Form_Load()
{
    txtWritten.Text = "";
    txtSaid.Text = "";
    ShowList();
}

WordingRule PronunciationWindow::Entered() const
{
    return {Trim(txtWritten.Text.get()), Trim(txtSaid.Text.get())};
}

void PronunciationWindow::ShowList()
{
    lstWords.ClearItems();
    for (WordingRule& rule : list_.Rules())
        lstWords.AddItem({std::move(rule.Written), 0, {std::move(rule.Said)}});
    cmdRemove.Enabled = false;
}

void PronunciationWindow::Set()
{
    const WordingRule rule = Entered();
    if (const std::string fault = PronunciationList::Fault(rule); !fault.empty()) {
        program_.Messages.Announce(fault, vbExclamation, Title, "Decline");
        txtWritten.SetFocus();
        return;
    }
    list_.Set(rule);
    ShowList();
    txtWritten.Text = "";
    txtSaid.Text = "";
    txtWritten.SetFocus();
    changed_();
}

void PronunciationWindow::Remove()
{
    const std::size_t number = lstWords.SelectedItem();
    if (number == 0)
        return;
    list_.Remove(lstWords.ListItems().at(number - 1).TextOf(0));
    ShowList();
    txtWritten.SetFocus();
    changed_();
}

Pronunciations::Pronunciations(ExtrasMenu& menu, Program& program, WordingControl& wording, SaveText save,
                               StateStore& state)
    : program_(program), wording_(wording), save_(std::move(save)), state_(state),
      window_(program, list_, state, [this] {
          Use();
          Save();
      })
{
    menu.BeginGroup();
    menu.Add("mnuPronunciation", "Pron&unciation...", [this] {
        // What the user has changed in the file meanwhile is there, too.
        if (!window_.IsShown()) {
            Read();
            Use();
        }
        window_.Show();
        window_.Activate();
    });
    menu.AddSwitch(
        "mnuShorten", "Say Lin&ks and Codes in Short", [this] { return Shortens(); },
        [this](bool on) {
            state_.Set(ShortensName, on ? "1" : "");
            Use();
        });
    Menu& byLanguage = menu.AddSwitch(
        "mnuByLanguage", "Voice &for Each Language", [this] { return ByLanguage(); },
        [this](bool on) {
            state_.Set(ByLanguageName, on ? "1" : "");
            Use();
        });
    menu.WhenOpened([this, &byLanguage] {
        byLanguage.Enabled = wording_.KnowsLanguages();
        if (!byLanguage.Enabled)
            byLanguage.Caption = "Voice &for Each Language (not in this build)";
    });
}

void Pronunciations::Begin()
{
    Read();
    Use();
}

std::string Pronunciations::Path() const
{
    return program_.ProgramPath(FileName);
}

bool Pronunciations::Shortens() const
{
    return state_.Get(ShortensName) == "1";
}

bool Pronunciations::ByLanguage() const
{
    return wording_.KnowsLanguages() && state_.Get(ByLanguageName) == "1";
}

// A list that cannot be read now stays as it was, and so does its file.
void Pronunciations::Read()
{
    FileSystem& files = program_.Host.Files;
    std::vector<std::string> lines;
    try {
        if (files.FileExists(Path())) {
            const std::unique_ptr<TextStream> stream = files.OpenTextFile(Path());
            while (!stream->AtEndOfStream())
                lines.push_back(stream->ReadLine());
        }
        list_ = PronunciationList(std::move(lines));
        unread_ = false;
    } catch (const RuntimeError&) {
        unread_ = true;
    }
}

void Pronunciations::Use()
{
    wording_.UseWording(list_.Rules(), Shortens());
    wording_.UseVoicesByLanguage(ByLanguage());
}

void Pronunciations::Save()
{
    if (unread_ || !save_(Path(), list_.Text()))
        program_.Messages.Announce("The list of words cannot be saved in the following file:" + std::string(CrLf) +
                                       Path() + CrLf + "What you changed holds until Voxmate ends.",
                                   vbExclamation, "Voxmate - File Error", "Decline");
}

} // namespace voxmate
