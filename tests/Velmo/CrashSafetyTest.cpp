#include "crash/CrashText.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <memory>
#include <random>

using velmo::test::crashText;

namespace {

// One folder with its note, and the child currently typing into it.
struct Lane {
    QTemporaryDir dir;
    QString previous = QStringLiteral("# Note\nbefore any run\n");
    std::unique_ptr<QProcess> child;
    QByteArray output;
    int run = 0;
};

}

// Processes that autosave are killed at random moments. After every kill the note is whole:
// exactly one of the texts its process had handed over (or what was there before), and
// nothing but the note and at most its temporary file is left beside it. Four folders run
// side by side to keep the test short.
TEST(CrashSafety, aKillAtAnyMomentLeavesTheNoteWhole)
{
    constexpr int lanes = 4;
    constexpr int kills = 200;
    std::vector<std::unique_ptr<Lane>> all;
    for (int i = 0; i < lanes; ++i) {
        all.push_back(std::make_unique<Lane>());
        velmo::test::writeBytes(all.back()->dir.filePath("Note.md"), all.back()->previous.toUtf8());
    }
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> stepsBeforeKill(0, 6);
    std::uniform_int_distribution<int> delayUs(0, 4'000);
    const QRegularExpression header(QStringLiteral("^# Note\\nrun (\\d+) step (\\d+)\\n"));
    int written = 0;
    int temporaryLeft = 0;

    for (int round = 0; round < kills / lanes; ++round) {
        for (int i = 0; i < lanes; ++i) {
            Lane& lane = *all[i];
            lane.run = round * lanes + i;
            lane.output.clear();
            lane.child = std::make_unique<QProcess>();
            lane.child->start(QStringLiteral(VELMO_SAVE_CRASH_CHILD),
                              {lane.dir.filePath("Note.md"), QString::number(lane.run)});
        }
        // Kill moments follow the child's progress (a random number of steps typed, then a
        // random pause), so a slow build is cut at as many different points as a fast one.
        for (auto& lane : all) {
            const int steps = stepsBeforeKill(random);
            while (lane->output.count('\n') < 1 + steps) {
                ASSERT_TRUE(lane->child->waitForReadyRead(5000)) << "run " << lane->run;
                lane->output += lane->child->readAllStandardOutput();
            }
            QThread::usleep(delayUs(random));
            lane->child->kill(); // SIGKILL
        }
        for (auto& lane : all) {
            ASSERT_TRUE(lane->child->waitForFinished(5000));
            lane->output += lane->child->readAllStandardOutput();

            QSet<int> handed;
            const QList<QByteArray> lines = lane->output.split('\n');
            for (qsizetype i = 1; i + 1 < lines.size(); ++i) // the last line may be cut off
                handed.insert(lines[i].toInt());

            const QString note = lane->dir.filePath("Note.md");
            const QString onDisk = QString::fromUtf8(velmo::test::readBytes(note));
            if (onDisk != lane->previous) {
                const auto match = header.match(onDisk);
                ASSERT_TRUE(match.hasMatch()) << "run " << lane->run << ": a note of " << onDisk.size() << " characters";
                const int step = match.captured(2).toInt();
                ASSERT_EQ(match.captured(1).toInt(), lane->run);
                ASSERT_TRUE(handed.contains(step)) << "run " << lane->run << " step " << step;
                ASSERT_TRUE(onDisk == crashText(lane->run, step)) << "run " << lane->run << " step " << step << ": torn";
                ++written;
            }
            lane->previous = onDisk;

            QStringList left = QDir(lane->dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            left.removeAll(QStringLiteral("Note.md"));
            temporaryLeft += left.removeAll(QStringLiteral(".Note.md.velmo-write"));
            ASSERT_TRUE(left.isEmpty()) << left.join(u' ').toStdString();
        }
    }
    // Enough kills must land after a write for the test to prove something.
    EXPECT_GT(written, kills / 4);
    std::printf("%d of %d kills found a new text; %d left a temporary file\n", written, kills, temporaryLeft);
}
