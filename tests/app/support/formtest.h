#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstring>

// What the tests of the three forms have in common.
namespace formtest {

// The objects that a form class points to, in the order of its members. A form class is pointers and nothing else.
template <class Form> QList<QObject*> Members(const Form& form)
{
    QList<QObject*> objects;
    for (std::size_t i = 0; i < sizeof(Form) / sizeof(QObject*); ++i) {
        QObject* object = nullptr;
        std::memcpy(&object, reinterpret_cast<const char*>(&form) + i * sizeof(QObject*), sizeof(QObject*));
        objects.append(object);
    }
    return objects;
}

inline QStringList Names(const QList<QObject*>& objects)
{
    QStringList names;
    for (const QObject* object : objects)
        names.append(object->objectName());
    return names;
}

// "Class name" of each object.
inline QStringList ClassesAndNames(const QList<QObject*>& objects)
{
    QStringList lines;
    for (const QObject* object : objects)
        lines.append(QLatin1String(object->metaObject()->className()) + QLatin1Char(' ') + object->objectName());
    return lines;
}

// The form's own objects among a parent's children, in the order of their creation.
inline QStringList ChildrenAmong(const QObject* parent, const QList<QObject*>& members)
{
    QStringList names;
    for (QObject* child : parent->children()) {
        if (members.contains(child))
            names.append(child->objectName());
    }
    return names;
}

} // namespace formtest
