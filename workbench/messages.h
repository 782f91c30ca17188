#pragma once

// The window's own texts. They are plain strings that no translator sees, so the status line, the
// message boxes and the file dialogs keep their language whatever the interface is switched to.
namespace messages {

constexpr char deleteItem[] = "删除";
constexpr char deleteAllItems[] = "删除所有";
constexpr char confirmDelete[] = "确认要删除吗";
constexpr char confirmDeleteAll[] = "确认要删除所有吗";
constexpr char notice[] = "提醒"; // title of the message boxes
constexpr char connected[] = "连接成功";
constexpr char disconnected[] = "断开连接";
constexpr char fusionDone[] = "融合完成";
constexpr char saveSuccess[] = "保存成功";
constexpr char open[] = "打开";
constexpr char noPage[] = "当前没有页面";
constexpr char noItems[] = "当前没有图元";
constexpr char save[] = "保存";
constexpr char confirmQuitUnsaved[] = "信息尚未保存，是否确定退出?";
constexpr char confirmQuit[] = "是否确定要退出?";
constexpr char confirmClosePage[] = "修改尚未保存，确定要退出吗？";
constexpr char showingPicture[] = "显示图片";

} // namespace messages
