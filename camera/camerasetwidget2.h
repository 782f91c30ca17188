#pragma once

#include "camera/cameraparameters.h"

#include <QWidget>

#include <memory>

class QLabel;
class QPushButton;

namespace Ui {
class CameraSetWidget2;
}

/// The panel of the microscope camera: six collapsing groups of controls. Every control becomes a
/// change of a parameter; nothing is stored here, the camera itself keeps what is set.
class CameraSetWidget2 : public QWidget
{
    Q_OBJECT

public:
    explicit CameraSetWidget2(QWidget *parent = nullptr);
    ~CameraSetWidget2() override;

    /// Shows what the camera says of itself. It goes through the controls, so what was read is sent
    /// straight back. An invalid record changes nothing.
    void loadCameraInfo(const CameraInfo &info);
    /// From manual focus to automatic, else to manual.
    void toggleFocusMode();
    void checkAutoFocus();
    void setClickFocus(bool on);
    /// Whether a click on the live picture picks a focus area.
    bool isClickFocus() const { return clickFocus; }
    /// Shows the cell of the focus window, counted from 1.
    void showCell(int x, int y);
    void setFocusValue(int value) { changeFocus(value); }
    /// Texts of the form in the language in force.
    void retranslate();
    QSize sizeHint() const override { return {400, 1412}; }

signals:
    /// @param type  a CameraParameter::Type
    void cameraInfoChange(int type, int num);
    void blinkChange(bool clickFocus, bool bigArea, bool showFrame);
    /// The camera was told to keep its settings. Nothing confirms that it did.
    void showSuccess();

public slots:
    void changeFocus(int value);
    void setFocusManual();

private slots:
    // Group headers
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();
    void on_pushButton_3_clicked();
    void on_pushButton_4_clicked();
    void on_pushButton_5_clicked();
    void on_pushButton_6_clicked();

    // Focus mode and focus area
    void on_horizontalSlider_valueChanged(int value);
    void on_checkBox_toggled(bool checked);
    void on_checkBox_3_toggled(bool checked);
    void on_pushButton_8_clicked();
    void on_comboBox_currentIndexChanged(int index);
    void on_horizontalSlider_2_valueChanged(int value);
    void on_horizontalSlider_3_valueChanged(int value);
    void on_checkBox_4_stateChanged(int state);
    void on_checkBox_14_stateChanged(int state);
    void on_pushButton_9_clicked();

    // Exposure
    void on_horizontalSlider_4_valueChanged(int value);
    void on_horizontalSlider_5_valueChanged(int value);
    void on_horizontalSlider_14_valueChanged(int value);
    void on_checkBox_5_toggled(bool checked);
    void on_checkBox_6_toggled(bool checked);
    void on_pushButton_10_clicked();

    // White balance
    void on_horizontalSlider_6_valueChanged(int value);
    void on_horizontalSlider_7_valueChanged(int value);
    void on_horizontalSlider_8_valueChanged(int value);
    void on_checkBox_7_toggled(bool checked);
    void on_checkBox_8_toggled(bool checked);
    void on_pushButton_11_clicked();

    // Flip and function
    void on_checkBox_9_stateChanged(int state);
    void on_checkBox_10_stateChanged(int state);
    void on_horizontalSlider_12_valueChanged(int value);
    void on_horizontalSlider_13_valueChanged(int value);
    void on_horizontalSlider_9_valueChanged(int value);
    void on_horizontalSlider_10_valueChanged(int value);
    void on_horizontalSlider_15_valueChanged(int value);
    void on_comboBox_2_currentIndexChanged(int index);
    void on_checkBox_12_stateChanged(int state);
    void on_checkBox_13_stateChanged(int state);
    void on_pushButton_12_clicked();

    // Bottom row
    void on_pushButton_13_clicked();
    void on_pushButton_14_clicked();

    // Controls without a function
    void on_horizontalSlider_11_valueChanged(int value);
    void on_spinBox_valueChanged(int value);
    void on_spinBox_2_valueChanged(int value);
    void on_checkBox_11_stateChanged(int state);

private:
    static void toggleGroup(QPushButton *header, QWidget *group);
    static void showNumber(QLabel *label, int value);
    void send(int type, int num) { emit cameraInfoChange(type, num); }
    void sendFunctionWord();
    int functionWord() const;
    void emitBlinkChange();

    std::unique_ptr<Ui::CameraSetWidget2> ui;
    bool clickFocus = false;
};
