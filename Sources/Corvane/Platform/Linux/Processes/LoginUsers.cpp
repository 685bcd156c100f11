#include "Platform/LoginUsers.h"

#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace corvane {

bool othersMayLogIn()
{
    constexpr uid_t firstPerson = 1000;
    constexpr uid_t nobody = 65534;
    bool found = false;
    ::setpwent();
    while (const passwd* const user = ::getpwent()) {
        const std::string_view shell = user->pw_shell;
        const bool isPerson = user->pw_uid >= firstPerson && user->pw_uid != nobody;
        const bool hasShell = !shell.ends_with("/nologin") && !shell.ends_with("/false") && !shell.ends_with("/sync");
        found = found || (isPerson && hasShell && user->pw_uid != ::geteuid());
    }
    ::endpwent();
    return found;
}

}
