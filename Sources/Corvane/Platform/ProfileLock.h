#pragma once

#include <QString>
#include <memory>

namespace corvane {

/// The lock that a running program holds on its data folder. No program starts there while this object exists.
class ProfileLock {
public:
    /// Null if a program holds it, or if the folder cannot be locked. Does not create the folder.
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
