// The dialog for opening a file.
#include "tests/unit/qt/QtTest.h"

#include "base/RuntimeError.h"
#include "tests/fakes/FakeState.h"

#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <set>

namespace voxmate::qt
{

namespace
{

/// A temporary home folder with a documents folder in it.
class Home
{
public:
    Home()
    {
        for (const char* name : {"HOME", "XDG_CONFIG_HOME"})
            before_.push_back(qgetenv(name));
        qputenv("HOME", QFile::encodeName(folder_.path()));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder_.path() + "/.config"));
        QDir(folder_.path()).mkdir("Documents");
    }
    ~Home()
    {
        qputenv("HOME", before_[0]);
        before_[1].isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before_[1]);
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;

    std::string Path(const std::string& name) const { return folder_.path().toStdString() + "/" + name; }
    void Touch(const std::string& name) const
    {
        QFile file(QString::fromStdString(Path(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

private:
    QTemporaryDir folder_;
    std::vector<QByteArray> before_;
};

QLineEdit& NameField(QFileDialog& dialog)
{
    return *dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
}

/// Runs `act` on the next dialog.
void InDialog(const std::function<void(QFileDialog&)>& act)
{
    QTimer::singleShot(50, &App(), [act] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        const QPointer<QFileDialog> shown = dialog;
        // In a window that is not active yet a field has no focus, and its text counts less than the selection.
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
        act(*dialog);
        if (shown && shown->isVisible()) {
            ADD_FAILURE() << "the dialog is still open, in " << shown->directory().path().toStdString() << ", with '"
                          << NameField(*shown).text().toStdString() << "' for a name";
            shown->reject();
        }
    });
}

/// Types a name and confirms it.
void Type(QFileDialog& dialog, const std::string& name)
{
    NameField(dialog).setText(QString::fromStdString(name));
    QTest::keyClick(&NameField(dialog), Qt::Key_Return);
}

std::set<std::string> NamesIn(QFileDialog& dialog)
{
    const auto* view = dialog.findChild<QAbstractItemView*>(QStringLiteral("listView"));
    std::set<std::string> names;
    for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
        names.insert(view->model()->index(row, 0, view->rootIndex()).data().toString().toStdString());
    return names;
}

} // namespace

class OpenDialogTest : public QtTest
{
protected:
    CommonDialog Settings() const { return {"Text Files (*.txt)|*.txt", "Open Text File to Read...", true, {}, {}}; }
    /// The user's answer to the dialog: the file name, or the error as "32755 Cancel was selected.".
    std::string Opened(CommonDialog settings)
    {
        try {
            windows.ShowOpen(settings);
            return settings.FileName;
        } catch (const RuntimeError& error) {
            return std::to_string(error.Number) + " " + error.Description;
        }
    }
    /// The folder in which the next dialog begins. The dialog is cancelled.
    std::string FolderOfTheNext()
    {
        std::string folder;
        InDialog([&](QFileDialog& dialog) {
            folder = dialog.directory().path().toStdString();
            dialog.reject();
        });
        Opened(Settings());
        return folder;
    }

    Home home;
};

TEST_F(OpenDialogTest, ItHasItsTitleAndItsFilterAndFirstBeginsInTheDocumentsFolder)
{
    home.Touch("Documents/notes.txt");
    InDialog([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Open Text File to Read...");
        EXPECT_EQ(dialog.nameFilters(), QStringList{"Text Files (*.txt)"});
        EXPECT_EQ(dialog.directory().path().toStdString(), home.Path("Documents"));
        Type(dialog, "notes.txt");
    });
    EXPECT_EQ(Opened(Settings()), home.Path("Documents/notes.txt"));
}

TEST_F(OpenDialogTest, ATypedFolderIsEnteredAndTheNameFieldIsFreeForTheFilesName)
{
    QDir(QString::fromStdString(home.Path(""))).mkpath(QStringLiteral("Documents/letters.txt"));
    home.Touch("Documents/letters.txt/one.txt");
    InDialog([&](QFileDialog& dialog) {
        for (const std::string& folder : {home.Path("Documents/letters.txt"), home.Path("Documents/letters.txt")}) {
            Type(dialog, folder);
            EXPECT_EQ(dialog.directory().path().toStdString(), home.Path("Documents/letters.txt"));
            EXPECT_EQ(NameField(dialog).text(), "");
        }
        Type(dialog, "one.txt");
    });
    EXPECT_EQ(Opened(Settings()), home.Path("Documents/letters.txt/one.txt"));
}

TEST_F(OpenDialogTest, AFileThatIsSelectedOrTypedForAMomentIsTold)
{
    for (const char* name : {"Documents/one.txt", "Documents/two.txt"})
        home.Touch(name);
    QDir(QString::fromStdString(home.Path("Documents"))).mkdir("folder");
    std::vector<std::string> told;
    CommonDialog settings = Settings();
    settings.Selected = [&](const std::string& file) { told.push_back(file); };
    InDialog([&](QFileDialog& dialog) {
        NameField(dialog).setText(QStringLiteral("one.txt"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 1; }));
        // What is passed by at once, a missing file and a folder are not told.
        NameField(dialog).setText(QStringLiteral("two.txt"));
        for (const char* name : {"missing.txt", "folder"}) {
            NameField(dialog).setText(QString::fromLatin1(name));
            QTest::qWait(400);
        }
        NameField(dialog).clear();
        auto* files = dialog.findChild<QAbstractItemView*>(QStringLiteral("listView"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return NamesIn(dialog).contains("two.txt"); }));
        const QModelIndexList rows = files->model()->match(files->model()->index(0, 0, files->rootIndex()),
                                                           Qt::DisplayRole, QStringLiteral("two.txt"));
        ASSERT_EQ(rows.size(), 1);
        files->setCurrentIndex(rows.front());
        EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 2; }));
        dialog.reject();
    });
    Opened(settings);
    EXPECT_EQ(told, (std::vector<std::string>{home.Path("Documents/one.txt"), home.Path("Documents/two.txt")}));
}

TEST_F(OpenDialogTest, TheFoldersOfTheLastDocumentsAreAtItsSideAlsoInTheNextRun)
{
    for (const char* folder : {"a", "b", "c", "d", "e", "f"}) {
        QDir(QString::fromStdString(home.Path(""))).mkdir(QString::fromLatin1(folder));
        home.Touch(std::string(folder) + "/one.txt");
    }
    fakes::FakeState state;
    windows.Recent.KeepIn(&state);
    const auto open = [this](const std::string& name) {
        InDialog([&](QFileDialog& dialog) { Type(dialog, home.Path(name)); });
        Opened(Settings());
    };
    const auto places = [this](QtWindowSystem& system) {
        std::vector<std::string> paths;
        InDialog([&](QFileDialog& dialog) {
            for (const QUrl& url : dialog.sidebarUrls())
                paths.push_back(url.toLocalFile().toStdString());
            dialog.reject();
        });
        CommonDialog settings = Settings();
        settings.CancelError = false;
        system.ShowOpen(settings);
        return paths;
    };
    for (const char* name : {"a/one.txt", "b/one.txt", "a/one.txt", "missing/none.txt", "Documents/none.txt"})
        open(name);
    const std::string all = home.Path("");
    const std::vector<std::string> usual{all.substr(0, all.size() - 1), home.Path("Documents"), "/"};
    std::vector<std::string> expected = usual;
    expected.insert(expected.end(), {home.Path("a"), home.Path("b")});
    EXPECT_EQ(places(windows), expected);
    for (const char* name : {"c/one.txt", "d/one.txt", "e/one.txt", "f/one.txt"})
        open(name);
    ASSERT_TRUE(QDir(QString::fromStdString(home.Path("e"))).removeRecursively());
    QtWindowSystem next(VOXMATE_SHARE_DIR);
    next.Recent.KeepIn(&state);
    expected = usual;
    expected.insert(expected.end(), {home.Path("f"), home.Path("d"), home.Path("c"), home.Path("a")});
    EXPECT_EQ(places(next), expected);
}

TEST_F(OpenDialogTest, AFileThatIsConfirmedAtOnceIsNotTold)
{
    home.Touch("Documents/one.txt");
    bool told = false;
    CommonDialog settings = Settings();
    settings.Selected = [&](const std::string& /*file*/) { told = true; };
    InDialog([&](QFileDialog& dialog) { Type(dialog, "one.txt"); });
    EXPECT_EQ(Opened(settings), home.Path("Documents/one.txt"));
    QTest::qWait(400);
    EXPECT_FALSE(told);
}

TEST_F(OpenDialogTest, WithoutADocumentsFolderItBeginsAtHome)
{
    ASSERT_TRUE(QDir(QString::fromStdString(home.Path("Documents"))).removeRecursively());
    EXPECT_EQ(FolderOfTheNext() + "/", home.Path(""));
}

TEST_F(OpenDialogTest, ItShowsFoldersAndTheFilesThatMatchInAnyCase)
{
    for (const char* name : {"Documents/one.txt", "Documents/TWO.TXT", "Documents/three.text", "Documents/four.doc"})
        home.Touch(name);
    QDir(QString::fromStdString(home.Path("Documents"))).mkdir("five");
    const std::set<std::string> expected{"one.txt", "TWO.TXT", "five"};
    InDialog([&](QFileDialog& dialog) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return NamesIn(dialog) == expected; }))
            << testing::PrintToString(NamesIn(dialog));
        dialog.reject();
    });
    Opened(Settings());
}

TEST_F(OpenDialogTest, EveryFilterOfSeveralCanBeChosen)
{
    CommonDialog settings = Settings();
    settings.Filter = "Text Files (*.txt)|*.txt|Letters|*.doc;*.rtf|All Files (*.*)|*.*";
    InDialog([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.nameFilters(),
                  (QStringList{"Text Files (*.txt)", "Letters (*.doc *.rtf)", "All Files (*.*)"}));
        dialog.reject();
    });
    Opened(settings);
}

TEST_F(OpenDialogTest, ANameThatDoesNotExistIsGivenAllTheSame)
{
    InDialog([&](QFileDialog& dialog) { Type(dialog, "none.txt"); });
    EXPECT_EQ(Opened(Settings()), home.Path("Documents/none.txt"));
    InDialog([&](QFileDialog& dialog) { Type(dialog, "/no/such/folder/none.txt"); });
    EXPECT_EQ(Opened(Settings()), "/no/such/folder/none.txt");
}

TEST_F(OpenDialogTest, ATypedPathOfAFileInTheFolderShownIsTakenByEnterAndByTheButton)
{
    QDir(QString::fromStdString(home.Path("Documents"))).mkdir("letters");
    for (const char* name : {"Documents/notes.txt", "Documents/notes two.txt", "Documents/letters/dear.txt"})
        home.Touch(name);
    for (const char* name :
         {"Documents/notes.txt", "Documents/notes two.txt", "Documents/letters/dear.txt", "Documents/none.txt"}) {
        for (const bool enter : {true, false}) {
            InDialog([&](QFileDialog& dialog) {
                dialog.setDirectory(QString::fromStdString(home.Path("Documents")));
                // The toolkit looks names up in this list.
                ASSERT_TRUE(QTest::qWaitFor([&] { return NamesIn(dialog).contains("notes.txt"); }));
                // Typed by keys, because each of them makes the toolkit look up what is meant.
                QTest::keyClicks(&NameField(dialog), QString::fromStdString(home.Path(name)));
                QPushButton* open = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
                EXPECT_TRUE(open->isEnabled()) << name;
                if (enter)
                    QTest::keyClick(&NameField(dialog), Qt::Key_Return);
                else
                    QTest::mouseClick(open, Qt::LeftButton);
                EXPECT_FALSE(dialog.isVisible()) << name << (enter ? " by Enter" : " by the button");
            });
            EXPECT_EQ(Opened(Settings()), home.Path(name));
        }
    }
}

// The field loses the focus for a moment now and then, for example when the list of completions opens below it.

TEST_F(OpenDialogTest, ATypedPathIsTakenWhereverTheKeyboardWasWhileItWasTyped)
{
    for (const char* name : {"Documents/notes.txt", "Documents/other.txt"})
        home.Touch(name);
    for (const int without : {0, 1, 2, 3}) {
        InDialog([&](QFileDialog& dialog) {
            dialog.setDirectory(QString::fromStdString(home.Path("Documents")));
            dialog.selectFile(QStringLiteral("other.txt"));
            ASSERT_TRUE(QTest::qWaitFor([&] { return NamesIn(dialog).contains("notes.txt"); }));
            auto* files = dialog.findChild<QAbstractItemView*>(QStringLiteral("treeView"));
            NameField(dialog).setFocus();
            NameField(dialog).selectAll();
            const QString path = QString::fromStdString(home.Path("Documents/notes.txt"));
            for (qsizetype i = 0; i < path.size(); ++i) {
                // Without focus: at the ends of folder names, everywhere but there, always, never.
                const bool end = i + 1 == path.size() || path[i + 1] == u'/';
                const bool away = without == 0 ? end : without == 1 ? !end : without == 2;
                away ? files->setFocus() : NameField(dialog).setFocus();
                NameField(dialog).insert(path.mid(i, 1));
            }
            NameField(dialog).setFocus();
            EXPECT_TRUE(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->isEnabled()) << without;
            QTest::keyClick(&NameField(dialog), Qt::Key_Return);
            EXPECT_FALSE(dialog.isVisible()) << without;
        });
        EXPECT_EQ(Opened(Settings()), home.Path("Documents/notes.txt")) << without;
    }
}

TEST_F(OpenDialogTest, AFolderChosenInTheListIsEnteredByTheButton)
{
    QDir(QString::fromStdString(home.Path("Documents"))).mkdir("letters");
    home.Touch("Documents/letters/dear.txt");
    InDialog([&](QFileDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return NamesIn(dialog).contains("letters"); }));
        auto* files = dialog.findChild<QAbstractItemView*>(QStringLiteral("treeView"));
        files->setFocus();
        files->setCurrentIndex(files->model()->index(0, 0, files->rootIndex()));
        QPushButton* open = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
        ASSERT_TRUE(QTest::qWaitFor([&] { return open->isEnabled(); }));
        QTest::mouseClick(open, Qt::LeftButton);
        EXPECT_EQ(dialog.directory().path().toStdString(), home.Path("Documents/letters"));
        Type(dialog, "dear.txt");
    });
    EXPECT_EQ(Opened(Settings()), home.Path("Documents/letters/dear.txt"));
}

TEST_F(OpenDialogTest, TheOpenButtonTakesATypedNameThatDoesNotExist)
{
    InDialog([&](QFileDialog& dialog) {
        QTest::keyClicks(&NameField(dialog), "none.txt");
        QPushButton* open = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
        ASSERT_NE(open, nullptr);
        EXPECT_TRUE(open->isEnabled());
        QTest::mouseClick(open, Qt::LeftButton);
        EXPECT_FALSE(dialog.isVisible());
        if (dialog.isVisible())
            dialog.reject();
    });
    EXPECT_EQ(Opened(Settings()), home.Path("Documents/none.txt"));
}

TEST_F(OpenDialogTest, ATypedFolderIsEnteredNotOpened)
{
    QDir(QString::fromStdString(home.Path(""))).mkdir("letters");
    InDialog([&](QFileDialog& dialog) {
        Type(dialog, home.Path("letters"));
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.directory().path().toStdString(), home.Path("letters"));
        Type(dialog, "dear.txt");
    });
    EXPECT_EQ(Opened(Settings()), home.Path("letters/dear.txt"));
}

TEST_F(OpenDialogTest, ACancelledOneRaisesAnErrorWhenItIsToldTo)
{
    InDialog([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(Opened(Settings()), "32755 Cancel was selected.");
}

TEST_F(OpenDialogTest, ACancelledOneLeavesTheNameAsItWas)
{
    CommonDialog settings = Settings();
    settings.CancelError = false;
    settings.FileName = "before.txt";
    InDialog([](QFileDialog& dialog) {
        EXPECT_EQ(NameField(dialog).text(), "before.txt");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(Opened(settings), "before.txt");
}

TEST_F(OpenDialogTest, TheNextBeginsInTheFolderOfTheFileThatWasChosen)
{
    QDir(QString::fromStdString(home.Path(""))).mkdir("letters");
    InDialog([&](QFileDialog& dialog) { Type(dialog, home.Path("letters/dear.txt")); });
    Opened(Settings());
    EXPECT_EQ(FolderOfTheNext(), home.Path("letters"));
}

TEST_F(OpenDialogTest, TheNextBeginsInTheFolderACancelledOneWasLeftIn)
{
    QDir(QString::fromStdString(home.Path(""))).mkdir("letters");
    InDialog([&](QFileDialog& dialog) {
        dialog.setDirectory(QString::fromStdString(home.Path("letters")));
        dialog.reject();
    });
    Opened(Settings());
    EXPECT_EQ(FolderOfTheNext(), home.Path("letters"));
    ASSERT_TRUE(QDir(QString::fromStdString(home.Path("letters"))).removeRecursively());
    EXPECT_EQ(FolderOfTheNext(), home.Path("Documents"));
}

} // namespace voxmate::qt
