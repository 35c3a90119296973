// What the window costs: to come up, beside another editor's, to be drawn, and each step of a drag. Drawing is measured
// in this process without a display (alone with --drawing), starts on a display of their own.
#include "bench/peer_process.h"
#include "bench/player_clips.h"
#include "bench/window_start.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "ui/graph/curve_graph.h"
#include "ui/graph/time_axis.h"
#include "ui/main_window.h"
#include "ui/viewer/video_surface.h"

#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTimer>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>

// The macro declares a function, which is no namespace's.
static void loadResources() {
    Q_INIT_RESOURCE(icons);
}

namespace {

using namespace flowtide;
using bench::median;

constexpr double clipSeconds = 20;
constexpr int startCount = 3;
constexpr double startGoalMilliseconds = 250;
constexpr double repaintGoalMilliseconds = 4;
constexpr double dragGoalMilliseconds = 8;
constexpr const char* peer = "shotcut";

double threadMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

template <typename Work>
double millisecondsOf(const Work& work) {
    const double start = threadMilliseconds();
    work();
    return threadMilliseconds() - start;
}

/// Until nothing is decoded, rendered or read in the background any more.
void settle() {
    int quiet = 0;
    while (quiet < 10) {
        const double before = bench::cpuSeconds();
        timespec rest{0, 50'000'000};
        ::nanosleep(&rest, nullptr);
        QApplication::processEvents();
        quiet = bench::cpuSeconds() - before < 0.01 ? quiet + 1 : 0;
    }
}

void printRow(const char* what, std::vector<double> milliseconds, double goal) {
    const double middle = median(milliseconds);
    std::sort(milliseconds.begin(), milliseconds.end());
    const double slow = milliseconds.empty() ? 0 : milliseconds[milliseconds.size() * 95 / 100];
    std::printf("  %-44s %9.2f %9.2f %9.2f\n", what, middle, slow, middle / goal);
}

void sendMouse(QWidget* to, QEvent::Type type, QPointF at) {
    const bool isRelease = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, to->mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      isRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(to, &event);
}

SpeedKeyframes curve(std::size_t count) {
    SpeedKeyframes points;
    for (std::size_t i = 0; i < count; ++i) {
        const double share = static_cast<double>(i) / static_cast<double>(count - 1);
        points.push_back({Uuid::random(), share * clipSeconds, i % 7 < 3 ? 0.4 : 1.5, SpeedKeyframeRole::curve});
    }
    return points;
}

/// Repaints of the graph, and a point's drag through it from the mouse to what is seen.
void measureGraph(SessionHost& host, MainWindow& window, std::size_t pointCount) {
    auto* const graph = window.findChild<CurveGraph*>();
    double curveHeight = -1;
    const auto connection =
        QObject::connect(graph, &CurveGraph::curveHeightChanged, graph, [&](double y) { curveHeight = y; });
    const SpeedKeyframes points = curve(pointCount);
    host.model().replaceKeyframes(points);
    const double time = points[pointCount / 2].time;
    host.model().scrub(time / clipSeconds);
    settle();

    std::vector<double> repaints;
    for (int i = 0; i < 101; ++i)
        repaints.push_back(millisecondsOf([&] { graph->repaint(); }));

    const double width = graph->width() - 2 * TimeAxis::margin;
    const QPointF place(TimeAxis::margin + time / clipSeconds * width, curveHeight);
    std::vector<double> steps;
    sendMouse(graph, QEvent::MouseButtonPress, place);
    for (int i = 0; i < 121; ++i)
        steps.push_back(millisecondsOf([&] {
            sendMouse(graph, QEvent::MouseMove, place + QPointF(0, 10 + i % 40));
            QApplication::processEvents();
        }));
    const bool wasHeld = host.model().curve().keyframes()[pointCount / 2].speed != points[pointCount / 2].speed;
    sendMouse(graph, QEvent::MouseButtonRelease, place + QPointF(0, 10));
    QObject::disconnect(connection);

    std::printf("%zu points in %d x %d pixels\n", pointCount, graph->width(), graph->height());
    printRow("repaint of the graph", repaints, repaintGoalMilliseconds);
    if (wasHeld)
        printRow("step of a drag, all panes", steps, dragGoalMilliseconds);
    else
        std::printf("  the drag missed its point\n");
}

void measureViewer(SessionHost& host, MainWindow& window) {
    auto* const surface = window.findChild<VideoSurface*>();
    std::vector<double> repaints;
    for (int i = 0; i < 101; ++i)
        repaints.push_back(millisecondsOf([&] { surface->repaint(); }));
    std::printf("viewer, 1080p in %d x %d pixels\n", surface->width(), surface->height());
    printRow("repaint", repaints, repaintGoalMilliseconds);

    constexpr int playedFrames = 90;
    host.model().replaceKeyframes(curve(2));
    host.model().scrub(0);
    settle();
    const double wallGoal = 1e3 / bench::playedFrameRate;
    host.model().togglePlayback();
    QEventLoop loop;
    QTimer::singleShot(std::chrono::seconds(3), &loop, &QEventLoop::quit);
    const double cost = millisecondsOf([&] { loop.exec(); });
    host.model().togglePlayback();
    printRow("main thread, per frame of playback", {cost / playedFrames}, wallGoal);
}

int drawing(const char* clip) {
    loadResources();
    int argumentCount = 1;
    std::string name = "bench_ui";
    std::array<char*, 2> arguments{name.data(), nullptr};
    QApplication application(argumentCount, arguments.data());
    QCoreApplication::setOrganizationName(QStringLiteral("flowtide-bench"));
    const auto backend = makeFFmpegBackend();
    UserSettings settings;
    SessionHost host({*backend, [](AudioFormat, const AudioPull&, const PlaybackClock&) { return nullptr; }}, settings);
    MainWindow window(host);
    window.resize(1440, 900);
    window.show();
    window.openFile(clip);
    settle();
    std::printf("milliseconds of the main thread's CPU%27s %9s %9s\n", "median", "95 of 100", "of goal");
    for (const std::size_t count : {300UL, 19'999UL})
        measureGraph(host, window, count);
    measureViewer(host, window);
    return 0;
}

void printStart(const std::string& name, const std::vector<std::string>& words, double goal) {
    std::vector<double> cpu;
    std::vector<double> wall;
    std::vector<double> settled;
    std::vector<double> resting;
    for (int i = 0; i < startCount; ++i) {
        const bench::WindowStart start = bench::startOnDisplay(words);
        if (!start.appeared) {
            std::printf("%-24s showed no window\n", name.c_str());
            return;
        }
        cpu.push_back(start.firstPaintCpuSeconds * 1e3);
        wall.push_back(start.firstPaintWallSeconds * 1e3);
        settled.push_back(start.settledCpuSeconds * 1e3);
        resting.push_back(start.restingCpuShare * 100);
    }
    std::printf("%-24s %9.0f %9.0f %9.2f %9.0f %9.2f\n", name.c_str(), median(cpu), median(wall), median(cpu) / goal,
                median(settled), median(resting));
    std::fflush(stdout);
}

/// On a display of its own.
int starts(const std::string& clip) {
    ::unsetenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON");
    int argumentCount = 1;
    std::string name = "bench_ui";
    std::array<char*, 2> arguments{name.data(), nullptr};
    QGuiApplication application(argumentCount, arguments.data());
    std::printf("start, median of %d     CPU ms to  wall ms to            CPU ms to    %% CPU\n"
                "%-24s %9s %9s %9s %9s %9s\n",
                startCount, "", "paint", "paint", "of goal", "rest", "at rest");
    printStart("Flowtide", {FLOWTIDE_PROGRAM}, startGoalMilliseconds);
    printStart("Flowtide with a clip", {FLOWTIDE_PROGRAM, clip}, startGoalMilliseconds);
    printStart(peer, {peer, "--noupgrade"}, startGoalMilliseconds);
    printStart(std::string(peer) + " with a clip", {peer, "--noupgrade", clip}, startGoalMilliseconds);
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount > 2 && std::string_view(arguments[1]) == "--starts") return starts(arguments[2]);
    const bench::ScratchFolder scratch;
    const std::string clip = bench::makePlayedClip(bench::phoneClip(), clipSeconds, scratch);
    if (clip.empty()) {
        std::printf("ffmpeg could not make the clip\n");
        return 1;
    }
    if (argumentCount < 2) {
        const bench::ProcessCost started = bench::runProcess({FLOWTIDE_RUN_ON_DISPLAY, arguments[0], "--starts", clip});
        std::printf("%s\n", started.output.c_str());
        std::fflush(stdout);
    }
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("FLOWTIDE_STATE_DIR", (scratch / "state").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (scratch / "config").c_str(), 1);
    return drawing(clip.c_str());
}
