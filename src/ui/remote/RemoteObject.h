#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include "ui/remote/RemoteControl.h"

namespace tendel {

// The program as other programs see it on the session bus: the interface that
// data/app.tendel.Tendel.xml describes. Its generated adaptor calls the functions below, which bear
// the names of that file, and reads the dynamic properties. Main thread only.
class RemoteObject : public QObject, protected QDBusContext {
    Q_OBJECT
public:
    RemoteObject();

    // From now on it is this that answers; before, requests are refused. `control` must outlive
    // every request.
    void serve(RemoteControl& control);

    qlonglong PauseFor(uint minutes);
    void PauseUntil(qlonglong time);
    qlonglong PauseUntilTomorrow();
    void Resume();
    void StartFocus();
    void PauseFocus();
    void ResumeFocus();
    void SkipFocus();
    void ExtendFocus();
    void ExtendBreak();
    void StopFocus();
    void AnswerAlert(const QString& answer);
    void OpenWindow();
    void OpenSection(const QString& section);
    void Quit();

    // An action of the desktop entry.
    void perform(const QString& action);

Q_SIGNALS:
    void AlertShown(const QString& title, const QStringList& answers);
    void AlertClosed(const QString& title, const QString& outcome);

private:
    // Has the request carried out and answers with an error when it was refused.
    template <class Request>
    void answer(const Request& request);
    void refuse(const RemoteRefusal& refusal);
    qlonglong pauseEnd() const;
    // Sets the properties, and returns those that were different.
    QVariantMap set(const RemoteState& state);
    void publish();

    RemoteControl* control_ = nullptr;
    std::vector<Subscription> subscriptions_;
};

}  // namespace tendel
