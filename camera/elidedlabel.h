#pragma once

#include <QLabel>

/// A label of one line that shows a text too long for it with an ellipsis; `text()` stays whole.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override;
};
