#include "Platform/MediaDecoder.h"

namespace corvane {

QString describe(DecodeFailure failure)
{
    switch (failure) {
    case DecodeFailure::Missing:
        return QStringLiteral("The file is gone.");
    case DecodeFailure::NotAFile:
        return QStringLiteral("This is a link or a device, not a file, so it is not opened.");
    case DecodeFailure::TooLarge:
        return QStringLiteral("The file is too large to be read here.");
    case DecodeFailure::UnknownFormat:
        return QStringLiteral("The file is of a kind that is not shown here.");
    case DecodeFailure::TooManyPixels:
        return QStringLiteral("The picture is too large to be shown here.");
    case DecodeFailure::Damaged:
        return QStringLiteral("The file is damaged.");
    case DecodeFailure::TooSlow:
        return QStringLiteral("The file takes too long to read.");
    case DecodeFailure::Crashed:
        return QStringLiteral("The file can't be read safely.");
    case DecodeFailure::Unavailable:
        return QStringLiteral("Pictures and sounds can't be read right now.");
    }
    return {};
}

}
