// Saves as sound files what would be spoken: a document, the text of the textbox, or what is selected in it.
#pragma once

#include "controls/Form.h"
#include "controls/OptionButton.h"
#include "extras/Documents.h"
#include "extras/ExtrasMenu.h"
#include "extras/SoundRun.h"
#include "forms/frmMain.h"
#include "modules/Program.h"

#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

/// The window stays usable beside the others, and tells how far a recording is. Closing it, or Cancel, ends one.
class SaveSoundWindow : public Form
{
public:
    SaveSoundWindow(Program& program, frmMain& main, Documents& documents, const SoundHost& host);

    Frame fraWhat{this, "fraWhat", "What"};
    enum { Document, Selection, Text };
    OptionGroup optWhat{this, "optWhat", {"&Document", "&Selected text of the textbox", "&Text of the textbox"}};
    Label lblKind{this, "lblKind", "&Kind of file:"};
    ComboBox comKind{this, "comKind"};
    CheckBox chkChapters{this, "chkChapters", "A file for each cha&pter, in a folder of their own"};
    Label lblProgress{this, "lblProgress"};
    CommandButton cmdSave{this, "cmdSave", "S&ave..."};
    CommandButton cmdClose{this, "cmdClose", "Close"};
    Timer tmrSound{this, "tmrSound", 100, false};

    /// Shows the window; what is not there cannot be chosen in it.
    void Open();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    Program& program_;
    frmMain& main_;
    Documents& documents_;
    const SoundHost& host_;
    std::vector<std::string> kinds_;
    std::unique_ptr<SoundRun> run_;
    std::string document_; ///< path of the one that can be saved; empty: none
    bool asking_ = false;  ///< a dialog or a box is up, or a document is being converted
    bool cancelled_ = false;

    void Look();
    void ShowState();
    void Tell(const std::string& text);
    std::string TextOf(int what) const;
    void Save();
    bool Ask(recording::Job& job);
    bool AskForFile(recording::Job& job);
    bool AskForFolder(recording::Job& job);
    void Start(recording::Job job);
    void Close();
    void TakeNews();
    void Convert();
    void End(const recording::News& news);
    void Fail(const std::string& reason);
    std::string Proposed(int what) const;
};

/// The item of the menu.
class SaveSound
{
public:
    SaveSound(ExtrasMenu& menu, Program& program, frmMain& main, Documents& documents, SoundHost host);

    SaveSoundWindow& Window() { return window_; }

private:
    const SoundHost host_;
    SaveSoundWindow window_;
};

} // namespace voxmate
