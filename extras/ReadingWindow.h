// A window that shows the text of the document that is being read, and the sentence and word that are being heard.
#pragma once

#include "controls/DocumentView.h"
#include "controls/Form.h"
#include "extras/Documents.h"
#include "extras/ExtrasMenu.h"
#include "extras/ReadingText.h"
#include "platform/StateStore.h"

namespace voxmate
{

class ReadingWindow : public Form
{
public:
    /// `stop` stops everything, as the main window's button.
    ReadingWindow(FormHost& host, Documents& documents, StateStore& state, Event stop);

    CommandButton cmdSentenceBack{this, "cmdSentenceBack", "&Back a Sentence"};
    CommandButton cmdPause{this, "cmdPause", "&Pause"};
    CommandButton cmdSentenceForward{this, "cmdSentenceForward", "&Forward a Sentence"};
    CommandButton cmdParagraphBack{this, "cmdParagraphBack", "Back a Pa&ragraph"};
    CommandButton cmdStop{this, "cmdStop", "&Stop"};
    CommandButton cmdParagraphForward{this, "cmdParagraphForward", "For&ward a Paragraph"};
    DocumentView vwText{this, "vwText"};
    StatusBar stsReading{this, "stsReading", {{"", 0, "Activity"}}};
    Timer tmrText{this, "tmrText", 10, false}; ///< runs while there is text to be shown

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    Documents& documents_;
    ReadingText text_{vwText};
    unsigned shown_ = 0; ///< the document's number

    void Look();
    void TakeText();
    void Step(const TextPlace& place, int by);
};

/// The items of the menu, and when the window opens.
class ReadingWindows
{
public:
    ReadingWindows(ExtrasMenu& menu, FormHost& host, Documents& documents, StateStore& state, Event stop);

    ReadingWindow& Window() { return window_; }

private:
    StateStore& state_;
    Documents& documents_;
    ReadingWindow window_;
    unsigned seen_ = 0; ///< the document that was there at the last look

    bool Opens() const;
    void Look();
};

} // namespace voxmate
