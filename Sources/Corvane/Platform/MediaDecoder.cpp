#include "Platform/MediaDecoder.h"

#include "Foundation/Literals.h"

namespace corvane {

QString describe(DecodeFailure failure)
{
    switch (failure) {
    case DecodeFailure::Missing:
        return u"The file is gone."_s;
    case DecodeFailure::NotAFile:
        return u"This is a link or a device, not a file, so it is not opened."_s;
    case DecodeFailure::TooLarge:
        return u"The file is too large to be read here."_s;
    case DecodeFailure::UnknownFormat:
        return u"This type of file can't be shown here."_s;
    case DecodeFailure::TooManyPixels:
        return u"The picture is too large to be shown here."_s;
    case DecodeFailure::Damaged:
        return u"The file is damaged."_s;
    case DecodeFailure::TooSlow:
        return u"The file takes too long to read."_s;
    case DecodeFailure::Crashed:
        return u"The file can't be read safely."_s;
    case DecodeFailure::Unavailable:
        return u"Pictures and sounds can't be read right now."_s;
    }
    return {};
}

}
