#pragma once

#include "platform/macos/renderer/Widget.h"

namespace tavelle::appkit {

std::unique_ptr<Widget> makeText();
std::unique_ptr<Widget> makeImage();
std::unique_ptr<Widget> makeButton(Send send);
std::unique_ptr<Widget> makeSlider(Send send);
std::unique_ptr<Widget> makePicker(Send send);
std::unique_ptr<Widget> makeOption();
std::unique_ptr<Widget> makeTextField(bool isSecure, Send send);
std::unique_ptr<Widget> makeTextEditor(Send send);
std::unique_ptr<Widget> makeList(Send send);

}  // namespace tavelle::appkit
