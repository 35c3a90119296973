// A stream's buffer whose flush fails, as that of a full disk or a closed pipe.
#pragma once

#include <cerrno>
#include <sstream>
#include <string>
#include <utility>

namespace flowtide::test {

/// Keeps what is written; a flush fails with `cause` from the moment that this includes `text`.
class FailingBuffer : public std::stringbuf {
public:
    FailingBuffer(std::string text, int cause)
        : text_(std::move(text))
        , cause_(cause) {}

protected:
    int sync() override {
        if (str().find(text_) == std::string::npos) return 0;
        errno = cause_;
        return -1;
    }

private:
    std::string text_;
    int cause_;
};

} // namespace flowtide::test
