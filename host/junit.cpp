#include "host/junit.h"

#include "framework/artifacts.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamWriter>

namespace dv::host {

bool WriteJUnitReport(const QString& path, const QString& scriptName, const TRunReport& report,
                      const QStringList& attachments)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    const bool failed = report.exitCode != 0;
    const QString time = QString::number(report.seconds, 'f', 3);
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuite"));
    xml.writeAttribute(QStringLiteral("name"), QStringLiteral("dvrun"));
    xml.writeAttribute(QStringLiteral("tests"), QStringLiteral("1"));
    xml.writeAttribute(QStringLiteral("failures"), failed ? QStringLiteral("1") : QStringLiteral("0"));
    xml.writeAttribute(QStringLiteral("time"), time);
    xml.writeStartElement(QStringLiteral("testcase"));
    xml.writeAttribute(QStringLiteral("classname"), QStringLiteral("dvrun"));
    xml.writeAttribute(QStringLiteral("name"), QFileInfo(scriptName).fileName());
    xml.writeAttribute(QStringLiteral("time"), time);
    if (failed) {
        const QString text = report.FailureText();
        xml.writeStartElement(QStringLiteral("failure"));
        xml.writeAttribute(QStringLiteral("message"), text.section('\n', 0, 0));
        xml.writeCharacters(text);
        xml.writeEndElement();
    }
    if (!attachments.isEmpty()) {
        QString out;
        for (const QString& a : attachments) out += QStringLiteral("[[ATTACHMENT|%1]]\n").arg(a);
        xml.writeTextElement(QStringLiteral("system-out"), out);
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return file.error() == QFile::NoError;
}

}  // namespace dv::host
