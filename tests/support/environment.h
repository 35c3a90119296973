// A variable of the environment for one test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace flowtide::test {

/// Whatever a test sets the variable to, it has its old value again afterwards.
class RestoredVariable {
public:
    explicit RestoredVariable(const char* name)
        : name_(name) {
        if (const char* value = std::getenv(name)) value_ = value;
    }
    ~RestoredVariable() {
        if (value_)
            ::setenv(name_, value_->c_str(), 1);
        else
            ::unsetenv(name_);
    }
    RestoredVariable(const RestoredVariable&) = delete;
    RestoredVariable& operator=(const RestoredVariable&) = delete;

private:
    const char* name_;
    std::optional<std::string> value_;
};

} // namespace flowtide::test
