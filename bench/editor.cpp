// Measures the reminder editor with the largest number of reminders: opening it, from the menu command until the window
// has been drawn, and sorting a column, from the click on its header until the list has been redrawn. The file is in
// memory.
//
// Usage: editor [COUNT]   COUNT runs of each kind
#include "bench/Statistics.h"
#include "qt/system/QtApplication.h"
#include "qt/system/QtWindowSystem.h"
#include "tests/fakes/EditorsMain.h"
#include "tests/fakes/FakePlatform.h"

#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace voxmate;
using bench::NowMs;

namespace
{

constexpr int MostReminders = 32767;

/// Makes reminders with titles of several lengths in no order, at dates and times spread over the year.
void MakeReminders(Reminders& reminders)
{
    const char* const titles[] = {"Call the bank",         "dentist", "Water the plants", "Äpfel",
                                  "Zoo with the children", "back-up"};
    unsigned state = 1;
    const auto next = [&state](unsigned below) {
        state = state * 1103515245U + 12345U;
        return static_cast<std::int16_t>((state >> 16) % below);
    };
    for (int i = 0; i < MostReminders; ++i) {
        Reminder one;
        one.Title = std::string(titles[next(6)]) + " " + std::to_string(next(10000));
        one.Day = static_cast<std::int16_t>(1 + next(28));
        one.Month = static_cast<std::int16_t>(1 + next(12));
        one.Year = static_cast<std::int16_t>(2027 + next(20));
        one.Hour = next(24);
        one.Minute = next(60);
        one.Description = "Something to be done";
        one.Done = next(2) == 0;
        reminders.File.AppendRecords({Encoded(one)});
        ++reminders.List.RemCount;
    }
}

/// Handles all pending events and has the window drawn.
void Draw()
{
    QCoreApplication::processEvents();
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible())
            window->repaint();
}

} // namespace

int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 15;
    qt::QtApplication application(argc, argv);
    fakes::FakePlatform fake;
    qt::QtWindowSystem windows(VOXMATE_SHARE_DIR);
    Platform platform{fake.store, fake.agent, fake.speech, windows, fake.files, fake.process, fake.clock, fake.word};
    fakes::EditorsMain main(fake.log);
    Program program(platform);
    frmReminder form(program);
    main.form = &form;
    program.Main = &main;
    Reminders& reminders = program.Reminders;
    reminders.File.ReminderFilePath = "C:\\Voxmate\\VoxmateReminders.txt";
    reminders.File.ReminderTempPath = "C:\\Voxmate\\VoxmateReminders.tmp";
    MakeReminders(reminders);
    main.CheckReminderMenus(true, false);
    reminders.LoadReminders(false, 0);
    if (reminders.List.RemCount != MostReminders) {
        std::fprintf(stderr, "the reminders could not be made\n");
        return 1;
    }

    std::vector<double> opening;
    std::vector<double> filling;
    std::vector<double> sorting[4];
    // The first run of each loads fonts and icons and is not counted.
    for (int i = -1; i < count; ++i) {
        form.Unload();
        Draw();
        const double begin = NowMs();
        reminders.ShowAllReminders();
        const double filled = NowMs();
        Draw();
        const double end = NowMs();
        if (i >= 0) {
            opening.push_back(end - begin);
            filling.push_back(filled - begin);
        }
        for (int column = 4; column >= 1; --column) {
            const double click = NowMs();
            form.lstvReminders.UserColumnClick(column);
            Draw();
            if (i >= 0)
                sorting[column - 1].push_back(NowMs() - click);
        }
    }
    bench::Report("32767 reminders: opening the editor", opening, "ms", "under 150 ms");
    bench::Report("of it reading the file and filling the list", filling, "ms");
    for (int column = 1; column <= 4; ++column)
        bench::Report("sorting by " + form.lstvReminders.ColumnHeaders()[static_cast<std::size_t>(column - 1)].Text,
                      sorting[column - 1], "ms", "under 100 ms");
    return 0;
}
