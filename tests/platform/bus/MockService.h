#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QMap>
#include <QMutex>
#include <QThread>
#include <QVariant>

namespace tendel {

// The names of a program and its reason, as power managers list them.
struct Inhibition {
    QString who;
    QString why;
};

// A program on a bus that answers what the test told it to, from a thread of its own.
class MockService : public QDBusVirtualObject {
public:
    MockService(const QString& address, const QString& name);
    ~MockService() override { leave(); }

    // The connection ends, as when the program dies; and comes again.
    void leave();
    void join();

    // What a method answers, by its name; methods that are not told of do not exist.
    void answer(const QString& method, const QVariantList& arguments);
    void setProperty(const QString& path, const QString& interfaceName, const QString& property,
                     const QVariant& value);
    void emitSignal(const QString& path, const QString& interfaceName, const QString& signal,
                    const QVariantList& arguments);
    // While it hangs it keeps its name and answers nothing.
    void setHanging(bool hangs);
    // How often a method was called so far.
    int calls(const QString& method);

private:
    QString introspect(const QString&) const override { return QString(); }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    QString address_;
    QString name_;
    QThread thread_;
    QMutex mutex_;
    bool hangs_ = false;
    QList<QDBusMessage> unanswered_;
    QMap<QString, QVariantList> answers_;  // of properties under their names too
    QMap<QString, int> calls_;
};

}  // namespace tendel

Q_DECLARE_METATYPE(tendel::Inhibition)
