#pragma once

#include <QPushButton>
#include <QVariant>

class QMenu;

/// A button whose meaning is chosen from a menu behind the triangle in its lower right corner.
class SelectButton : public QPushButton
{
    Q_OBJECT
public:
    explicit SelectButton(QWidget *parent = nullptr);

    /// Adds a choice and makes it the current one.
    void addItem(const QIcon &icon, const QString &text, const QVariant &data);

    /// The data of the current choice.
    QVariant data() const { return data_; }

signals:
    /// The operator chose from the menu. Adding an item is silent.
    void selectChange(QVariant data);

public slots:
    void menuShow();
    void actionTrigged();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void choose(const QIcon &icon, const QVariant &data);

    QPushButton *cornerButton;
    QMenu *menu;
    QVariant data_;
};
