// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// A settings file by Qt's own hand. "write FILE" stores a JSON object of keys and texts or lists of texts
// from standard input, "read FILE" prints such an object.

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <cstdio>

namespace {

int write(QSettings &settings)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return EXIT_FAILURE;
    const QVariantMap values = QJsonDocument::fromJson(input.readAll()).object().toVariantMap();
    for (auto it = values.begin(); it != values.end(); ++it) {
        const bool isList = it->metaType() == QMetaType::fromType<QVariantList>();
        settings.setValue(it.key(), isList ? QVariant(it->toStringList()) : *it);
    }
    settings.sync();
    return settings.status() == QSettings::NoError ? EXIT_SUCCESS : EXIT_FAILURE;
}

int print(const QSettings &settings)
{
    QVariantMap values;
    for (const QString &key : settings.allKeys())
        values.insert(key, settings.value(key));
    QFile output;
    if (settings.status() != QSettings::NoError || !output.open(stdout, QIODevice::WriteOnly))
        return EXIT_FAILURE;
    output.write(QJsonDocument(QJsonObject::fromVariantMap(values)).toJson());
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3)
        return EXIT_FAILURE;
    QSettings settings(arguments.at(2), QSettings::IniFormat);
    return arguments.at(1) == QLatin1String("write") ? write(settings) : print(settings);
}
