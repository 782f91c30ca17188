#pragma once

#include <QString>

#include <functional>

class QDialog;

/// The dialogs and menus that hold the program up until they are answered. Each that comes up goes
/// to the next expectation in line; one that nobody expects is dismissed and fails the step, and so
/// does one that stays open after its answer.
namespace tour {

/// @param answer  runs while the dialog is up, and ends it
void expectDialog(const QString &what, std::function<void(QDialog *)> answer);
/// A message box, which gets its only button. @param look  runs before that
void expectMessage(const QString &what, const std::function<void()> &look = nullptr);
/// A question, which gets Yes.
void expectQuestion(const QString &what);
/// A file dialog, in which the path is typed. @param look  runs before Return is pressed
void expectFileDialog(const QString &path, const std::function<void()> &look = nullptr);
/// A menu, of which an entry is clicked. @param look  runs before the click
void expectMenu(const QString &entry, const std::function<void()> &look = nullptr);

/// Waits until all that was expected came up and went. @throws Error
void dialogsDone(int limitMs = 20000);

} // namespace tour
