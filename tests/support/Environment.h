// Environment variables for one test.
#pragma once

#include <cstdlib>

namespace test {

/// Sets a variable that was not set, and takes it away at the end. Null leaves it unset.
class Environment {
public:
    Environment(const char* name, const char* value) : name_(name)
    {
        if (value)
            setenv(name, value, 1);
    }
    ~Environment() { unsetenv(name_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* name_;
};

} // namespace test
