#pragma once

#include <QWidget>

#include <memory>

class QLineEdit;

namespace Ui {
class CameraSetWidget;
}

/// A small panel for a generic camera: five sliders, a resolution box and two switches. It stands
/// ready; the main window shows the full panel alone.
class CameraSetWidget : public QWidget
{
    Q_OBJECT

public:
    /// What the panel is filled from.
    struct Values
    {
        bool valid = false;
        int brightness = -1;
        int contrast = -1;
        int hue = -1;
        int saturation = -1;
        int focus = -1;
        int autoFocus = -1; ///< 1 on, 0 off, -1 not offered
    };

    explicit CameraSetWidget(QWidget *parent = nullptr);
    ~CameraSetWidget() override;

    void load(const Values &values);
    /// All controls together; the focus slider stays disabled under autofocus.
    void setControlsEnabled(bool enabled);
    void setFocusValue(int value);
    void toggleAutoFocus();
    void setEliminateReflection(bool on);
    bool isClickFocus() const { return clickFocus; }

signals:
    /// @param type  a CameraParameter::Type
    void cameraInfoChange(int type, int num);
    void blinkChange(bool clickFocus);

private slots:
    void on_defaultBtn_clicked();
    void on_horizontalSlider_4_valueChanged(int value);
    void on_horizontalSlider_3_valueChanged(int value);
    void on_horizontalSlider_5_valueChanged(int value);
    void on_horizontalSlider_2_valueChanged(int value);
    void on_horizontalSlider_valueChanged(int value);
    void on_checkBox_2_stateChanged(int state);
    void on_comboBox_currentIndexChanged(int index);
    void on_checkBox_3_stateChanged(int state);
    void on_checkBox_4_stateChanged(int state);

private:
    static void showNumber(QLineEdit *field, int value);
    void send(int type, int num) { emit cameraInfoChange(type, num); }

    std::unique_ptr<Ui::CameraSetWidget> ui;
    bool clickFocus = false;
};
