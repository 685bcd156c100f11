#include "Platform/Linux/Decode/Sandbox.h"

#include "Foundation/Literals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace corvane {

namespace {

/// The address space, including program and libraries.
constexpr rlim_t mostMemory = 1UL << 30;

#if __has_feature(address_sanitizer)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

/// Sanitizers check memory through a pipe to themselves.
constexpr std::array sanitizersCalls { SCMP_SYS(pipe), SCMP_SYS(pipe2) };

constexpr std::array allowedCalls {
    SCMP_SYS(read),
    SCMP_SYS(pread64),
    SCMP_SYS(readv),
    SCMP_SYS(write),
    SCMP_SYS(writev),
    SCMP_SYS(lseek),
    SCMP_SYS(fstat),
    SCMP_SYS(newfstatat), // fstat in newer libraries; it opens nothing
    SCMP_SYS(statx), // fstat in Qt
    SCMP_SYS(close),
    SCMP_SYS(sendto),
    SCMP_SYS(recvmsg),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    SCMP_SYS(brk),
    SCMP_SYS(eventfd2), // for Qt's threads that scale pictures
    SCMP_SYS(futex),
    SCMP_SYS(sched_yield),
    SCMP_SYS(sched_getaffinity),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(rseq),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_nanosleep),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(getrandom),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
};

struct ReleaseFilter {
    void operator()(void* filter) const { seccomp_release(filter); }
};

std::unexpected<Error> systemFailure(const char* subject, int error)
{
    return failure(u"%1: %2"_s.arg(QLatin1StringView(subject), QLatin1StringView(std::strerror(error))));
}

Result<void> limit(decltype(RLIMIT_AS) what, rlim_t most)
{
    const rlimit value { most, most };
    if (::setrlimit(what, &value) != 0)
        return systemFailure("setrlimit", errno);
    return {};
}

int allowWhere(void* filter, int call, const scmp_arg_cmp& condition)
{
    return seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 1, &condition);
}

int allowAll(void* filter)
{
    int code = 0;
    for (const int call : allowedCalls)
        code = std::min(code, seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0));
    for (const int call : sanitizersCalls)
        code = std::min(code, isSanitized ? seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) : 0);
    // Executable memory is refused.
    for (const int call : { SCMP_SYS(mmap), SCMP_SYS(mprotect) })
        code = std::min(code, allowWhere(filter, call, { 2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0 }));
    // A decoder may create threads but no processes. The flags of the newer call can't be checked, so the library must
    // use the older one.
    code = std::min(code, allowWhere(filter, SCMP_SYS(clone), { 0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD }));
    return std::min(code, seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0));
}

}

Result<void> enterSandbox()
{
    ::prctl(PR_SET_DUMPABLE, 0);
    if (const auto limited = limit(RLIMIT_CORE, 0); !limited)
        return limited;
    // Sanitizers reserve terabytes of address space.
    if (const auto limited = isSanitized ? Result<void>() : limit(RLIMIT_AS, mostMemory); !limited)
        return limited;
    const std::unique_ptr<void, ReleaseFilter> filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
    if (!filter)
        return failure(u"seccomp_init failed"_s);
    if (const int code = allowAll(filter.get()); code < 0)
        return systemFailure("seccomp_rule_add", -code);
    if (const int code = seccomp_load(filter.get()); code < 0)
        return systemFailure("seccomp_load", -code);
    return {};
}

}
