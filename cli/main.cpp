// The program's start: joins the command line and the FFmpeg backend, and catches what nothing else has.
#include "cli/entry.h"
#include "media/failure_sentence.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#ifdef FLOWTIDE_HAS_WINDOW
#include "media/sdl/sdl_audio_output.h"
#include "ui/flowtide_app.h"
#endif

#include <unistd.h>

#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

namespace {

flowtide::FlowtideMain::WindowStart windowStart([[maybe_unused]] const flowtide::MediaBackend& backend) {
#ifdef FLOWTIDE_HAS_WINDOW
    return [&backend](const std::optional<std::filesystem::path>& file) {
        return flowtide::runFlowtideApp({backend, flowtide::openSdlAudio}, file,
                                        [](const std::string& sentence) { std::cerr << sentence << '\n'; });
    };
#else
    return {};
#endif
}

} // namespace

int main(int argc, char** argv) {
    // A reader of our output that goes away must not end an export, and a file that may not grow any further is a
    // write's failure, which has a sentence and tidies up.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        const auto backend = flowtide::makeFFmpegBackend();
        const flowtide::HeadlessExport::Arguments arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
        return flowtide::FlowtideMain::main(arguments, *backend, {std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1},
                                            windowStart(*backend));
    } catch (const std::exception& error) {
        std::cerr << "Loftwell Video ended unexpectedly: " << flowtide::sentenceFor(error) << '\n';
    } catch (...) {
        std::cerr << "Loftwell Video ended unexpectedly.\n";
    }
    return 1;
}
