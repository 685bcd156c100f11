#pragma once

#include <QString>
#include <memory>

namespace corvane {

/// The lock that a running program holds on its data folder. While this object lives, none starts there.
class ProfileLock {
public:
    /// Nothing where a program works there, or the folder takes no lock. Does not make the folder.
    static std::unique_ptr<ProfileLock> take(const QString& applicationSupport);
    ~ProfileLock();
    ProfileLock(const ProfileLock&) = delete;
    ProfileLock& operator=(const ProfileLock&) = delete;

private:
    explicit ProfileLock(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    int m_descriptor;
};

}
