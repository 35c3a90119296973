// What panes say: keys, dates, times, reports.
#include "ui/panes/clip_facts.h"
#include "ui/panes/export_texts.h"
#include "ui/panes/keycaps.h"
#include "ui/panes/project_date.h"
#include "ui/panes/shortcut_sheet.h"
#include "ui/panes/start_screen.h"
#include "ui/panes/value_formats.h"
#include "ui/release_notes.h"
#include "ui/session_text.h"
#include "ui/shortcuts.h"
#include "ui/tips.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QLocale>
#include <QTimeZone>
#include <QTranslator>

namespace flowtide {
namespace {

TEST(ShortcutSheetTest, ListsThirtyOneKeysInSevenGroups) {
    QStringList keys;
    QStringList titles;
    for (const ShortcutGroup& group : Shortcuts::sheet()) {
        titles << group.title;
        for (const ShortcutItem& item : group.items)
            keys << item.keys;
    }
    EXPECT_EQ(titles.join(u','), "Workspace,Playback,Timeline,Trimming,Zoom,Social crop,Curve editing");
#ifndef Q_OS_MACOS
    const QStringList expected{"Ctrl+O",
                               "Ctrl+S",
                               "Ctrl+Alt+S",
                               "Ctrl+Alt+I",
                               "Space",
                               "J / K / L",
                               "← / →",
                               "↑ / ↓",
                               "Ctrl+F",
                               "↑ / ↓ (full screen)",
                               "Drag graph",
                               "Ctrl++ / Ctrl+−",
                               "Shift+← / Shift+→",
                               "Shift+Z or \\",
                               "Alt scroll",
                               "Shift scroll",
                               "Q",
                               "W",
                               "Z",
                               "Drag lane",
                               "Backspace",
                               "Drag target",
                               "V",
                               "Tab",
                               "Drag preview",
                               "Click / drag",
                               "Alt click",
                               "Shift drag",
                               "Ctrl drag",
                               "Delete",
                               "Ctrl+Z / Ctrl+Shift+Z"};
    EXPECT_EQ(keys.join(u'\n').toStdString(), expected.join(u'\n').toStdString());
#endif
    for (const int width : {1440, 1359, 959}) {
        std::vector<int> groups;
        for (const auto& column : shortcutColumns(width))
            groups.insert(groups.end(), column.begin(), column.end());
        EXPECT_EQ(groups, (std::vector{0, 1, 2, 3, 4, 5, 6}));
    }
    EXPECT_EQ(shortcutColumns(1360).size(), 3U);
    EXPECT_EQ(shortcutColumns(1359).size(), 2U);
    EXPECT_EQ(shortcutColumns(959).size(), 1U);
}

TEST(ShortcutsTest, EachKeyGivesItsOwnCommand) {
    const struct {
        QKeyCombination key;
        Command command;
    } keys[] = {
        {Qt::CTRL | Qt::Key_E, Command::exportClip},
        {Qt::Key_Space, Command::playPause},
        {Qt::Key_J, Command::shuttleBackward},
        {Qt::Key_K, Command::shuttleStop},
        {Qt::Key_L, Command::shuttleForward},
        {Qt::Key_Left, Command::previousFrame},
        {Qt::Key_Right, Command::nextFrame},
        {Qt::Key_Up, Command::previousPoint},
        {Qt::Key_Down, Command::nextPoint},
        {Qt::Key_Plus, Command::zoomIn},
        {Qt::Key_Minus, Command::zoomOut},
        {Qt::SHIFT | Qt::Key_Z, Command::zoomToFit},
        {Qt::SHIFT | Qt::Key_Left, Command::panLeft},
        {Qt::SHIFT | Qt::Key_Right, Command::panRight},
        {Qt::Key_Q, Command::trimStart},
        {Qt::Key_W, Command::trimEnd},
        {Qt::Key_Z, Command::addZoom},
        {Qt::Key_Backspace, Command::deleteZoom},
        {Qt::Key_Delete, Command::deletePoints},
        {Qt::Key_V, Command::toggleCrop},
        {Qt::Key_Tab, Command::switchCurve},
        {Qt::CTRL | Qt::Key_Z, Command::undo},
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Command::redo},
    };
    for (const auto& [key, command] : keys)
        EXPECT_EQ(Shortcuts::bindingFor(key)->command, command) << key.key();
}

TEST(TipsTest, AreBrokenIntoLines) {
    EXPECT_EQ(Tips::broken("Keyboard shortcuts (?)"), "Keyboard shortcuts (?)");
    const QString text = "Render every purple range so you can play it back with its new frames";
    const QStringList lines = Tips::broken(text).split(u'\n');
    EXPECT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.join(u' '), text);
}

TEST(KeycapsTest, TellKeysFromWhatStandsBetweenThem) {
    const auto drawn = [](const QString& keys) {
        QStringList parts;
        for (const auto& piece : keycaps::pieces(keys))
            parts << (piece.isCap ? QStringLiteral("[%1]").arg(piece.text) : piece.text);
        return parts.join(u' ').toStdString();
    };
    EXPECT_EQ(drawn("Ctrl+Alt+S"), "[Ctrl] [Alt] [S]");
    EXPECT_EQ(drawn("Ctrl++ / Ctrl+−"), "[Ctrl] [+] / [Ctrl] [−]");
    EXPECT_EQ(drawn("Shift+Z or \\"), "[Shift] [Z] or [\\]");
    EXPECT_EQ(drawn("↑ / ↓ (full screen)"), "[↑] / [↓] (full screen)");
    EXPECT_EQ(drawn("Click / drag"), "Click / drag");
    EXPECT_EQ(drawn("⌥⌘I"), "[⌥] [⌘] [I]");
}

TEST(ExportTextsTest, SayWhatIsLeftAndWhatWasFound) {
    EXPECT_EQ(exportTexts::timeLeft(0.2), "About a second left");
    EXPECT_EQ(exportTexts::timeLeft(5.4), "About 5 seconds left");
    EXPECT_EQ(exportTexts::timeLeft(61), "About a minute left");
    EXPECT_EQ(exportTexts::timeLeft(3600 * 2 + 60), "About 2 h 1 min left");
    const auto lines = exportTexts::reportLines("Codec: H.264\nColor: video range, tags: matched\nodd");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].name, "Color:");
    EXPECT_EQ(lines[1].value, "video range, tags: matched");
    EXPECT_EQ(lines[2].value, "odd");
}

TEST(ProjectDateTest, NamesTheNearDays) {
    const QDateTime now(QDate(2026, 3, 2), QTime(10, 0), QTimeZone::utc());
    const auto at = [&](qint64 secondsAgo) {
        const QDateTime origin(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
        return projectDate({static_cast<double>(origin.secsTo(now) - secondsAgo)}, now);
    };
    EXPECT_EQ(at(60), "Today, 09:59");
    EXPECT_EQ(at(11 * 3600), "Yesterday, 23:00");
    EXPECT_EQ(at(2 * 86400), "28 February");
    EXPECT_EQ(at(90 * 86400), "2 December 2025");
}

TEST(ClipFactsTest, TellTheProbeRecord) {
    ImportedClip clip;
    clip.url = "/home/me/Footage/Meadow/bee.mp4";
    clip.duration = 4.037;
    clip.frameRate = 30000 / 1001.0;
    clip.width = 1280;
    clip.height = 720;
    clip.videoCodecType = VideoCodec::h264;
    clip.video.colorProperties = ColorProperties{"bt709", "bt709", "bt709"};
    clip.video.estimatedDataRate = 2'400'000;
    const auto value = [&](std::size_t group, std::size_t fact) {
        return clipFacts(clip, "/home/me")[group].facts[fact].value.toStdString();
    };
    EXPECT_EQ(value(0, 1), "~/Footage/Meadow");
    EXPECT_EQ(value(1, 0), "H.264");
    EXPECT_EQ(value(1, 2), "29.97 fps");
    EXPECT_EQ(value(1, 4), "Rec. 709, video range");
    EXPECT_EQ(value(1, 5), "2.4 Mb/s");
    EXPECT_EQ(value(2, 0), "No audio");
    EXPECT_EQ(folderText("/home/me", "/home/me"), "~");
    EXPECT_EQ(folderText("/home/metoo", "/home/me"), "/home/metoo");
}

TEST(StartScreenTest, FitsAsManyCardsAsThereIsRoomFor) {
    EXPECT_EQ(cardColumns(1440), 4);
    EXPECT_EQ(cardColumns(1920), 4);
    EXPECT_EQ(cardColumns(2560), 5);
    EXPECT_EQ(cardColumns(880), 3);
    EXPECT_EQ(cardColumns(100), 1);
}

TEST(ReleaseNotesTest, AreShownOncePerVersion) {
    EXPECT_FALSE(releaseNotes::areNewFor({}));
    EXPECT_FALSE(releaseNotes::areNewFor(releaseNotes::version()));
    EXPECT_TRUE(releaseNotes::areNewFor("0.0.1"));
}

TEST(ValueFormatsTest, SpeedsStepByTheirLastDigit) {
    const auto stepped = [](double speed, int steps) {
        const Field::Format format = valueFormats::speed();
        return format.text(format.stepped(speed, steps)).toStdString();
    };
    EXPECT_EQ(stepped(0.15, 1), "0.16x");
    EXPECT_EQ(stepped(1, 1), "1.1x");
    EXPECT_EQ(stepped(1, -1), "0.99x");
    EXPECT_EQ(stepped(9.5, 10), "15x");
    EXPECT_EQ(stepped(0.05, -10), "0.01x");
    EXPECT_EQ(stepped(99, 10), "100x");
}

TEST(SessionTextTest, SpeaksGermanWithTheSessionsNumbers) {
    EXPECT_EQ(sessionText("Rendering all ranges 62%"), "Rendering all ranges 62%");
    QTranslator german;
    ASSERT_TRUE(german.load(QLocale("de_DE"), "flowtide", "_", ":/translations"));
    QCoreApplication::installTranslator(&german);
    EXPECT_EQ(sessionText("Rendering all ranges 62%"), "Berechnung 62 %");
    EXPECT_EQ(sessionText("Saved"), "Gesichert");
    EXPECT_EQ(sessionText("Could not save: No space (28)."), "Nicht gesichert: No space (28).");
    EXPECT_EQ(sessionText("Tracking complete: 11 framing points across the retained clip. Ctrl+Z to undo."),
              "Verfolgung abgeschlossen: 11 Ausschnittpunkte im beibehaltenen Clip. Ctrl+Z macht sie rückgängig.");
    EXPECT_EQ(sessionText("The file of 12 bytes is no movie."), "The file of 12 bytes is no movie.");
    const QDateTime now(QDate(2026, 10, 20), QTime(12, 0), QTimeZone::utc());
    EXPECT_EQ(projectDate({static_cast<double>(now.toSecsSinceEpoch() - 978'307'200 - 17 * 86'400)}, now),
              "3. Oktober");
    EXPECT_EQ(Shortcuts::sheet()[0].items[0].keys, "Strg+O");
    EXPECT_EQ(keycaps::pieces("Strg+Leertaste").size(), 2U);
    QCoreApplication::removeTranslator(&german);
}

} // namespace
} // namespace flowtide
