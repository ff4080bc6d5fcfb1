#include "platform/linux/applications/HostCommand.h"

using namespace Qt::StringLiterals;

namespace velbrix {

ProcessRequest hostCommand(const QStringList &command)
{
    ProcessRequest request;
    request.program = command.value(0);
    request.arguments = command.mid(1);
    request.environment = {{u"LC_ALL"_s, u"C.UTF-8"_s}, {u"LANGUAGE"_s, u"en"_s}};
    return request;
}

QString lastLine(const ProcessOutcome &outcome)
{
    const QByteArray said = outcome.errorOutput.trimmed();
    const QByteArray text = said.isEmpty() ? outcome.output.trimmed() : said;
    return QString::fromUtf8(text.mid(text.lastIndexOf('\n') + 1)).simplified().left(300);
}

} // namespace velbrix
