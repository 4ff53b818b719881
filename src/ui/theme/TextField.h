#pragma once

#include <QLineEdit>

namespace tendel {

// One line of text in a rounded frame, 32 high.
class TextField : public QLineEdit {
    Q_OBJECT
public:
    explicit TextField(const QString& name, QWidget* parent = nullptr);

    // Shows that what is written cannot be taken.
    void setInvalid(bool isInvalid);
    bool isInvalid() const { return isInvalid_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isInvalid_ = false;
};

}  // namespace tendel
