#pragma once

#include <QDialog>
#include <QPointer>

#include <memory>

class Base;
class GraphicsCross;
class MainScene;

namespace Ui {
class DrawChangeDialog;
}

/// Edits width, colour and lock of one drawn object. Every change is applied at once.
class DrawChangeDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param object  the record of a shape for kind 0 (a `Base *`), a crosshair line for kind 1 (a
    ///                `GraphicsCross *`); any other kind has no object
    DrawChangeDialog(void *object, int kind, QWidget *parent = nullptr);
    ~DrawChangeDialog() override;

private slots:
    void on_spinBox_2_valueChanged(int arg1);
    void on_pushButton_2_clicked();
    void on_checkBox_clicked(bool checked);
    void on_pushButton_clicked();

private:
    void forgetIfGone();
    void showColour(const QColor &colour);

    std::unique_ptr<Ui::DrawChangeDialog> ui;
    Base *shape = nullptr;          // of kind 0, else null
    GraphicsCross *cross = nullptr; // of kind 1, else null
    QPointer<MainScene> scene;      // of the object
};
