// Bands of rows on threads.
#include "media/flow/parallel_rows.h"

#include <algorithm>
#include <future>
#include <thread>
#include <vector>

namespace flowtide::flow {

namespace {
// Fewer rows are not worth a thread.
constexpr int shortestBand = 16;
} // namespace

void parallelRows(int height, const std::function<void(int begin, int end)>& work) {
    const int cores = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    const int bands = std::clamp(height / shortestBand, 1, cores);
    const auto edge = [&](int band) { return static_cast<int>(static_cast<long>(height) * band / bands); };
    std::vector<std::future<void>> others;
    for (int band = 1; band < bands; ++band)
        others.push_back(std::async(std::launch::async, [&, band] { work(edge(band), edge(band + 1)); }));
    work(0, edge(1));
    for (auto& other : others)
        other.get();
}

} // namespace flowtide::flow
