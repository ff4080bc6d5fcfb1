#include "platform/macos/system/UserDefaultsBackend.h"

#include "platform/macos/applications/BundleIdentity.h"
#include "platform/macos/desktop/DefaultsValue.h"
#include "platform/macos/system/FoundationBridge.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// A bare executable would otherwise keep its settings under its file name.
NSUserDefaults *applicationDefaults()
{
    if (hasBundle())
        return NSUserDefaults.standardUserDefaults;
    return [[NSUserDefaults alloc] initWithSuiteName:bundleIdentifier()];
}

// Nothing where other things than texts are among them.
std::optional<DefaultsValue> texts(NSArray *values)
{
    QStringList all;
    for (id each in values) {
        if (![each isKindOfClass:[NSString class]])
            return std::nullopt;
        all.append(toQString(static_cast<NSString *>(each)));
    }
    return all;
}

std::optional<DefaultsValue> texts(NSDictionary *values)
{
    QMap<QString, QString> all;
    for (id key in values) {
        const id each = values[key];
        if (![key isKindOfClass:[NSString class]] || ![each isKindOfClass:[NSString class]])
            return std::nullopt;
        all.insert(toQString(static_cast<NSString *>(key)), toQString(static_cast<NSString *>(each)));
    }
    return all;
}

std::optional<DefaultsValue> fromNative(id value)
{
    if (CFGetTypeID((__bridge CFTypeRef)value) == CFBooleanGetTypeID())
        return static_cast<NSNumber *>(value).boolValue != NO;
    if ([value isKindOfClass:[NSNumber class]])
        return static_cast<NSNumber *>(value).doubleValue;
    if ([value isKindOfClass:[NSString class]])
        return toQString(static_cast<NSString *>(value));
    if ([value isKindOfClass:[NSData class]]) {
        NSData *data = value;
        return QByteArray(static_cast<const char *>(data.bytes), static_cast<qsizetype>(data.length));
    }
    if ([value isKindOfClass:[NSArray class]])
        return texts(static_cast<NSArray *>(value));
    if ([value isKindOfClass:[NSDictionary class]])
        return texts(static_cast<NSDictionary *>(value));
    return std::nullopt;
}

id toNative(bool value)
{
    return [NSNumber numberWithBool:value];
}

id toNative(qint64 value)
{
    return [NSNumber numberWithLongLong:value];
}

id toNative(double value)
{
    return [NSNumber numberWithDouble:value];
}

id toNative(const QString &value)
{
    return toNSString(value);
}

id toNative(const QByteArray &value)
{
    return [NSData dataWithBytes:value.constData() length:static_cast<NSUInteger>(value.size())];
}

id toNative(const QStringList &texts)
{
    NSMutableArray<NSString *> *values = [NSMutableArray array];
    for (const QString &text : texts)
        [values addObject:toNSString(text)];
    return values;
}

id toNative(const QMap<QString, QString> &texts)
{
    NSMutableDictionary<NSString *, NSString *> *values = [NSMutableDictionary dictionary];
    for (auto entry = texts.begin(); entry != texts.end(); ++entry)
        values[toNSString(entry.key())] = toNSString(entry.value());
    return values;
}

} // namespace

QJsonObject UserDefaultsBackend::load()
{
    QJsonObject all;
    NSDictionary<NSString *, id> *domain = [applicationDefaults() persistentDomainForName:bundleIdentifier()];
    for (NSString *name in domain) {
        const QString key = toQString(name);
        if (!isSettingsKey(key))
            continue;
        const std::optional<DefaultsValue> stored = fromNative(domain[name]);
        if (const std::optional<QJsonValue> value = stored ? jsonValue(*stored) : std::nullopt)
            all.insert(key, *value);
    }
    return all;
}

Result<void> UserDefaultsBackend::save(const QJsonObject &all, const QStringList &changed)
{
    NSUserDefaults *defaults = applicationDefaults();
    for (const QString &key : changed) {
        if (const std::optional<DefaultsValue> value = defaultsValue(key, all.value(key)))
            [defaults setObject:std::visit([](const auto &held) { return toNative(held); }, *value)
                         forKey:toNSString(key)];
        else
            [defaults removeObjectForKey:toNSString(key)];
    }
    if (!CFPreferencesAppSynchronize((__bridge CFStringRef)bundleIdentifier()))
        return failure(u"系统无法保存设置"_s);
    return {};
}

} // namespace velbrix
