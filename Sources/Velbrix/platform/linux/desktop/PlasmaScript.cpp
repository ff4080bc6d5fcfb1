#include "platform/linux/desktop/PlasmaScript.h"

#include "platform/linux/dbus/Bus.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const BusObject shell{.service = u"org.kde.plasmashell"_s,
                      .path = u"/PlasmaShell"_s,
                      .interface = u"org.kde.PlasmaShell"_s,
                      .category = u"Wallpaper"_s};

} // namespace

QCoro::Task<Result<QJsonDocument>> runPlasmaScript(const QString script, const QJsonDocument input)
{
    // JSON is also a literal of the script's language, whatever the texts hold.
    const QString literal =
        input.isNull() ? u"null"_s : QString::fromUtf8(input.toJson(QJsonDocument::Compact));
    const QVariantList arguments{u"var input = %1;\n"_s.arg(literal) + script};
    const auto printed = co_await callBus(shell, u"evaluateScript"_s, arguments);
    if (!printed)
        co_return std::unexpected(printed.error());
    const QByteArray text =
        printed->isEmpty() ? QByteArray() : printed->first().toString().toUtf8().trimmed();
    const QJsonDocument answer = QJsonDocument::fromJson(text);
    if (answer.isNull() && !text.isEmpty())
        co_return failure(u"Plasma 没有完成请求："_s + QString::fromUtf8(text.left(200)));
    co_return answer;
}

} // namespace velbrix
