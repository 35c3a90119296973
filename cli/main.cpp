// The program.
#include "cli/entry.h"
#include "media/ffmpeg/ffmpeg_backend.h"

#include <csignal>
#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    // A reader of our output that goes away must not end an export.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const auto backend = flowtide::makeFFmpegBackend();
        const flowtide::HeadlessExport::Arguments arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
        return flowtide::FlowtideMain::main(arguments, *backend, {std::cout, std::cerr});
    } catch (const std::exception& error) {
        std::cerr << "Loftwell Video ended unexpectedly: " << error.what() << '\n';
    } catch (...) {
        std::cerr << "Loftwell Video ended unexpectedly.\n";
    }
    return 1;
}
