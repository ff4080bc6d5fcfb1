#include "platform/macos/system/FoundationBridge.h"

using namespace Qt::StringLiterals;

namespace velbrix {

NSString *toNSString(const QString &text)
{
    return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(text.utf16())
                                   length:static_cast<NSUInteger>(text.size())];
}

QString toQString(NSString *text)
{
    if (!text)
        return {};
    QString copy(static_cast<qsizetype>(text.length), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar *>(copy.data()) range:NSMakeRange(0, text.length)];
    return copy;
}

Failure toFailure(NSError *error)
{
    return {error ? toQString(error.localizedDescription) : u"unknown"_s};
}

NSException *caughtException(void (^body)(void))
{
    @try {
        body();
    } @catch (NSException *exception) {
        return exception;
    }
    return nil;
}

Failure toFailure(NSException *exception)
{
    return {toQString(exception.reason ? exception.reason : exception.name)};
}

} // namespace velbrix
