#pragma once

#include "fusion/fusiondata.h"

#include <QWidget>

#include <memory>

namespace Ui {
class FusionWidget;
}

/// The panel on which the operator sets up a focus sweep and follows its progress.
class FusionWidget : public QWidget
{
    Q_OBJECT

public:
    explicit FusionWidget(QWidget *parent = nullptr);
    ~FusionWidget() override;

    /// Puts the start slider, then the end slider, on a focus position.
    void setSliders(int value);
    /// Enables or disables the start button; progress reads "0" in either case.
    void setStartEnabled(bool enabled);
    void setProgress(int value);
    /// Texts of the form in the language in force.
    void retranslate();

signals:
    void startFusion(FusionData sweep);
    void changeFocus(int value);

private slots:
    void on_horizontalSlider_valueChanged(int value);
    void on_horizontalSlider_2_valueChanged(int value);
    void on_spinBox_3_valueChanged(int arg1);
    void on_pushButton_2_clicked();
    void on_pushButton_3_clicked();
    void on_pushButton_clicked();

private:
    void updateCaptureNum();

    std::unique_ptr<Ui::FusionWidget> ui;
    int lastMovedEnd = 0; // 0 the start slider, 1 the end slider
};
