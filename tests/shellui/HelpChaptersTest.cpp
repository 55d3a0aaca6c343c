// F1 opens the help at the chapter of what is shown, in the program's language.
#include "WindowFixture.h"

#include "archive/ArchiveLocation.h"
#include "archive/ui/ArchiveCaptions.h"
#include "archive/ui/ArchiveWindow.h"
#include "archive/ui/BackupCaptions.h"
#include "archive/ui/DeviceCaptions.h"
#include "archive/ui/PaperCaptions.h"
#include "link/LanguageTable.h"
#include "specdb/ui/DatabaseWindow.h"
#include "update/ui/UpdateCaptions.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>

using namespace kalvo;
using namespace kalvo::testing;

class HelpChaptersTest : public WindowFixture {
protected:
    QTextBrowser *Help()
    {
        auto *help = m_window->findChild<QDialog *>(QStringLiteral("helpWindow"));
        return help && help->isVisible() ? help->findChild<QTextBrowser *>() : nullptr;
    }

    // F1 in `window` as the user presses it: the window has the focus.
    static void PressF1(QWidget *window)
    {
        window->activateWindow();
        EXPECT_TRUE(WaitUntil([window] { return QApplication::activeWindow() == window; }))
            << window->objectName().toStdString();
        QTest::keyClick(window, Qt::Key_F1);
    }

    // The open window of this kind.
    template <typename Window> static Window *Visible()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *window = qobject_cast<Window *>(w); window && window->isVisible())
                return window;
        return nullptr;
    }

    // The help's page, the chapter it was asked for and the heading at the top of its view.
    struct Shown {
        std::string page;
        std::string chapter;
        std::string top;
    };
    Shown Showing()
    {
        QTextBrowser *help = Help();
        if (!help)
            return {};
        QApplication::processEvents();
        const QTextBlock top = help->cursorForPosition(QPoint(4, 4)).block();
        return {help->source().fileName().toStdString(), help->source().fragment().toStdString(),
                top.text().toStdString()};
    }

    // The heading of `chapter` in the page shown: the block that holds its anchor.
    std::string Heading(const QString &chapter)
    {
        for (QTextBlock block = Help()->document()->begin(); block.isValid(); block = block.next())
            for (auto it = block.begin(); !it.atEnd(); ++it)
                if (it.fragment().charFormat().anchorNames().contains(chapter))
                    return block.text().toStdString();
        return "(no anchor " + chapter.toStdString() + ")";
    }
};

TEST_F(HelpChaptersTest, F1OpensTheChapterOfTheUpdateTheDatabaseAndTheArchiveInEveryLanguage)
{
    archive::WriteArchiveSettings({true, m_dir.filePath(QStringLiteral("archiv.sqlite"))});
    auto &window = Open();
    for (const link::LanguageColumn &language : link::LanguageColumns()) {
        SCOPED_TRACE(language.name.toStdString());
        window.findChild<QAction *>(language.menuEntry)->trigger();

        // The settings frame has no chapter of its own: the page opens at its top.
        PressF1(&window);
        ASSERT_NE(Help(), nullptr);
        EXPECT_EQ(Showing().page, language.helpFile.toStdString());
        EXPECT_EQ(Showing().chapter, "");
        EXPECT_EQ(Help()->verticalScrollBar()->value(), 0);

        Trigger("ablauf"); // the update's file choice
        PressF1(&window);
        EXPECT_EQ(Showing().page, language.helpFile.toStdString());
        EXPECT_EQ(Showing().chapter, "update");
        EXPECT_EQ(Showing().top, Heading(QStringLiteral("update")));
        Trigger("verbindung");

        Trigger("datenbank");
        auto *database = Visible<specdb::ui::DatabaseWindow>();
        ASSERT_NE(database, nullptr);
        PressF1(database);
        EXPECT_EQ(Showing().page, language.helpFile.toStdString());
        EXPECT_EQ(Showing().chapter, "pruefablaeufe");
        EXPECT_EQ(Showing().top, Heading(QStringLiteral("pruefablaeufe")));

        Trigger("archiv");
        auto *archive = Visible<archive::ui::ArchiveWindow>();
        ASSERT_NE(archive, nullptr);
        PressF1(archive);
        EXPECT_EQ(Showing().page, language.helpFile.toStdString());
        EXPECT_EQ(Showing().chapter, "archiv");
        EXPECT_EQ(Showing().top, Heading(QStringLiteral("archiv")));
        if (QStringList{QStringLiteral("de"), QStringLiteral("en"), QStringLiteral("fr")}.contains(
                language.code))
            Screenshot(*Help()->window(), QStringLiteral("help-archive-%1").arg(language.code));
    }
}

TEST_F(HelpChaptersTest, ChaptersNameTheUpdateAndArchiveCaptionsAsTheWindowsShowThem)
{
    using archive::ui::Caption;
    using update::ui::UpdateCaption;
    const UpdateCaption update[] = {UpdateCaption::Menu, UpdateCaption::Sequences, UpdateCaption::Pictures,
                                    UpdateCaption::Help, UpdateCaption::System,    UpdateCaption::Package};
    const Caption archive[] = {Caption::Title,         Caption::DeviceId, Caption::Type,
                               Caption::Customer,      Caption::Text,     Caption::Verdict,
                               Caption::Regulation,    Caption::Passed,   Caption::Failed,
                               Caption::From,          Caption::To,       Caption::DueBefore,
                               Caption::Search,        Caption::History,  Caption::IntervalsTitle,
                               Caption::SettingsTitle, Caption::Busy,     Caption::RecordCustomer,
                               Caption::CustomerOfRead};
    using archive::ui::BackupCaption;
    using archive::ui::DeviceCaption;
    using archive::ui::PaperCaption;
    const DeviceCaption device[] = {
        DeviceCaption::Button,       DeviceCaption::Customer, DeviceCaption::Type,
        DeviceCaption::Manufacturer, DeviceCaption::Location, DeviceCaption::Remarks,
        DeviceCaption::OutOfService, DeviceCaption::Retired,  DeviceCaption::HistoryTitle};
    const PaperCaption paper[] = {
        PaperCaption::SignedPdf, PaperCaption::LabelsPdf, PaperCaption::ReportSettings,
        PaperCaption::Company,   PaperCaption::Address,   PaperCaption::Logo,
        PaperCaption::Inspector, PaperCaption::Sheet,     PaperCaption::FirstFree};
    const BackupCaption backup[] = {BackupCaption::Menu, BackupCaption::Backup, BackupCaption::Restore};
    for (const link::LanguageColumn &language : link::LanguageColumns()) {
        QFile file(QDir(m_programDir).filePath(language.helpFile));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << language.helpFile.toStdString();
        // The page as the reader sees it: entities resolved, any run of white space one blank.
        QTextDocument page;
        page.setHtml(QString::fromUtf8(file.readAll()));
        const QString text = page.toPlainText().replace(QChar(0x00A0), QLatin1Char(' ')).simplified();
        // A caption as it reads on the screen: the ampersand of a menu's Alt key is not shown.
        const auto expectNamed = [&](QString caption) {
            caption.remove(QLatin1Char('&'));
            // A form's label is named without its colon.
            while (caption.endsWith(QLatin1Char(':')) || caption.endsWith(QLatin1Char(' ')))
                caption.chop(1);
            EXPECT_TRUE(text.contains(caption))
                << language.helpFile.toStdString() << " lacks \"" << caption.toStdString() << "\"";
        };
        for (UpdateCaption caption : update)
            expectNamed(update::ui::UpdateCaptionText(caption, language.name));
        for (Caption caption : archive)
            expectNamed(archive::ui::CaptionText(caption, language.name));
        for (DeviceCaption caption : device)
            expectNamed(archive::ui::DeviceCaptionText(caption, language.name));
        for (PaperCaption caption : paper)
            expectNamed(archive::ui::PaperCaptionText(caption, language.name));
        for (BackupCaption caption : backup)
            expectNamed(archive::ui::BackupText(caption, language.name));
    }
}
