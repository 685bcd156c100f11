#include "Care/Backup/Secrets.h"

#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/SecretFile.h"

#include <QEventLoop>

namespace corvane {

Result<Keyring::Secrets> readSecrets(const AppPaths& paths, Keyring& keyring)
{
    std::optional<std::expected<Keyring::Secrets, Keyring::Failure>> answer;
    QEventLoop loop;
    keyring.readAll(Keyring::Unlock::Ask, [&](const auto& read) {
        answer = read;
        loop.quit();
    });
    if (!answer)
        loop.exec();
    Keyring::Secrets secrets;
    if (*answer)
        secrets = **answer;
    else if (answer->error() != Keyring::Failure::Absent)
        return failure(u"The keyring is locked or does not answer. Unlock it and try again."_s);
    const SecretPlaces places = SecretFile(paths.secretsFile()).read();
    for (auto each = places.begin(); each != places.end(); ++each) {
        if (each->where == SecretPlace::Where::File)
            secrets.insert(each.key(), each->value);
        else if (each->where == SecretPlace::Where::Nowhere)
            secrets.remove(each.key());
    }
    return secrets;
}

}
