// How words are said: the user's own list with its window, whether links and codes are said in short, and whether each
// language has a voice of its own.
#pragma once

#include "controls/Form.h"
#include "controls/ListView.h"
#include "extras/ExtrasMenu.h"
#include "extras/PronunciationList.h"
#include "modules/Program.h"
#include "platform/StateStore.h"
#include "platform/WordingControl.h"

#include <functional>
#include <string>

namespace voxmate
{

/// The window in which the list is changed. Each change holds at once.
class PronunciationWindow : public Form
{
public:
    /// `list` is what is shown and changed; `changed` runs after each change. Both must outlive the window.
    PronunciationWindow(Program& program, PronunciationList& list, StateStore& state, Event changed);

    ListView lstWords{this, "lstWords", {{"Written", 24}, {"Said", 0}}};
    Label lblWritten{this, "lblWritten", "&Written:"};
    TextBox txtWritten{this, "txtWritten"};
    Label lblSaid{this, "lblSaid", "&Said:"};
    TextBox txtSaid{this, "txtSaid"};
    CommandButton cmdHear{this, "cmdHear", "&Hear It"};
    CommandButton cmdSet{this, "cmdSet", "&Add or Change"};
    CommandButton cmdRemove{this, "cmdRemove", "&Remove"};
    CommandButton cmdClose{this, "cmdClose", "&Close"};

protected:
    void Form_Load() override;

private:
    Program& program_;
    PronunciationList& list_;
    Event changed_;

    WordingRule Entered() const;
    void ShowList();
    void Set();
    void Remove();
};

class Pronunciations
{
public:
    /// Puts a text into a file, in one step; false when that fails.
    using SaveText = std::function<bool(const std::string& path, const std::string& text)>;

    Pronunciations(ExtrasMenu& menu, Program& program, WordingControl& wording, SaveText save, StateStore& state);

    /// Reads the list and has it used.
    void Begin();
    PronunciationWindow& Window() { return window_; }

    /// The list's file, in the program's folder.
    static constexpr const char* FileName = "pronunciation.txt";

private:
    Program& program_;
    WordingControl& wording_;
    SaveText save_;
    StateStore& state_;
    PronunciationList list_;
    bool unread_ = false; ///< the file is there, but could not be read
    PronunciationWindow window_;

    std::string Path() const;
    bool Shortens() const;
    bool ByLanguage() const;
    void Read();
    void Use();
    void Save();
};

} // namespace voxmate
