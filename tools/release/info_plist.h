#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>
#include <stdexcept>

namespace paneforge::release {

// A property list that cannot be read.
class InfoPlistError : public std::runtime_error {
public:
    explicit InfoPlistError(const QString& message);
    QString message() const { return message_; }

private:
    QString message_;
};

// The top-level dictionary of an XML property list (the form CMake writes an Info.plist in):
// <string> as QString, <true/> and <false/> as bool, <integer> as qlonglong, <real> as double,
// <array> as QVariantList and <dict> as QVariantMap. A binary property list is refused with the
// command that converts it. Throws InfoPlistError.
QVariantMap readInfoPlist(const QByteArray& plist);

// The string value of `key`. Throws InfoPlistError when there is none.
QString infoPlistString(const QByteArray& plist, const QString& key);

} // namespace paneforge::release
