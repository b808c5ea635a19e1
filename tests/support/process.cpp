// SPDX-License-Identifier: MIT
#include "support/process.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <system_error>

namespace ork::test {

namespace {

// Reads both pipes until the child has closed them.
void collect(int out, int err, ChildResult& result)
{
    pollfd files[] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
    std::string* texts[] = {&result.out, &result.err};
    int open = 2;
    char buffer[4096];
    while (open > 0) {
        if (poll(files, 2, -1) < 0) {
            if (errno == EINTR) continue;
            break;
        }
        for (int i = 0; i < 2; ++i) {
            if (files[i].fd < 0 || files[i].revents == 0) continue;
            const ssize_t count = read(files[i].fd, buffer, sizeof buffer);
            if (count > 0) {
                texts[i]->append(buffer, static_cast<std::size_t>(count));
            } else if (count == 0 || errno != EINTR) {
                close(files[i].fd);
                files[i].fd = -1;
                --open;
            }
        }
    }
}

ChildResult run(const std::function<int()>& body, unsigned seconds)
{
    int out[2], err[2];
    if (pipe(out) != 0 || pipe(err) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    std::fflush(nullptr); // or the child would print the parent's buffered text again
    const pid_t child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) {
        dup2(out[1], 1);
        dup2(err[1], 2);
        for (int file : {out[0], out[1], err[0], err[1]}) close(file);
        signal(SIGALRM, SIG_DFL);
        alarm(seconds);
        const int status = body();
        std::fflush(nullptr);
        _exit(status);
    }
    close(out[1]);
    close(err[1]);
    ChildResult result;
    collect(out[0], err[0], result);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
    return result;
}

} // namespace

bool ChildResult::timed_out() const { return signal == SIGALRM; }

std::string ChildResult::describe() const
{
    std::ostringstream text;
    if (signal != 0)
        text << "ended by signal " << signal << (timed_out() ? " (time was up)" : "");
    else
        text << "exit status " << exit_code;
    text << "\n--- standard output\n" << out << "--- standard error\n" << err;
    return text.str();
}

ChildResult run_child(const std::function<int()>& function, unsigned seconds) { return run(function, seconds); }

ChildResult run_program(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
                        unsigned seconds, const std::function<void()>& prepare)
{
    return run(
        [&] {
            for (const std::string& entry : environment) {
                const auto equals = entry.find('=');
                if (equals == std::string::npos)
                    unsetenv(entry.c_str());
                else
                    setenv(entry.substr(0, equals).c_str(), entry.c_str() + equals + 1, 1);
            }
            std::vector<char*> pointers;
            for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
            pointers.push_back(nullptr);
            if (prepare) prepare();
            execvp(pointers[0], pointers.data());
            std::perror(pointers[0]);
            return 127;
        },
        seconds);
}

ScopedLimit::ScopedLimit(int resource, rlim_t soft) : resource_(resource)
{
    getrlimit(static_cast<__rlimit_resource>(resource_), &before_);
    rlimit limit = before_;
    limit.rlim_cur = soft;
    if (setrlimit(static_cast<__rlimit_resource>(resource_), &limit) != 0)
        throw std::system_error(errno, std::generic_category(), "setrlimit");
}

ScopedLimit::~ScopedLimit() { setrlimit(static_cast<__rlimit_resource>(resource_), &before_); }

} // namespace ork::test
