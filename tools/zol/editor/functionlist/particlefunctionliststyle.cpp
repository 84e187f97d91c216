#include "tools/zol/editor/functionlist/particlefunctionliststyle.h"

QString GetParticleFunctionListStyleSheet()
{
	return QStringLiteral( R"(
CQParticleFunctionList, QScrollArea#ZOL_FunctionRows, QWidget#DraggableWidgetListContainer {
	background-color: #2b2d30;
}
CQElidedLabel#ZOL_FunctionListTitle, QLabel#ZOL_FunctionTypeLabel {
	color: #dcdcdc;
}
CQElidedLabel#ZOL_FunctionNameLabel {
	color: rgb(142, 197, 224);
}
CQElidedLabel#ZOL_FunctionValueLabel {
	color: rgb(165, 152, 138);
}
CQWrittenAttributesLabel {
	color: rgb(184, 184, 184);
}
QScrollArea#ZOL_FunctionRows QScrollBar:vertical {
	background: #26282a;
	width: 10px;
	margin: 0;
}
QScrollArea#ZOL_FunctionRows QScrollBar::handle:vertical {
	background: #55595e;
	min-height: 24px;
	border-radius: 4px;
	margin: 1px;
}
QScrollArea#ZOL_FunctionRows QScrollBar::add-line:vertical, QScrollArea#ZOL_FunctionRows QScrollBar::sub-line:vertical {
	height: 0;
}
QLabel#ZOL_ChildStatusLabel {
	color: #c8b8a0;
}
QPushButton#ZOL_EditFunctionButton {
	background-color: #3a3d41;
	border: 1px solid #222426;
	border-radius: 3px;
	text-align: left;
}
QPushButton#ZOL_EditFunctionButton:hover {
	background-color: #45494e;
}
QPushButton#ZOL_EditFunctionButton:checked, QPushButton#ZOL_EditFunctionButton[bCurrentActiveFunction="true"] {
	background-color: #46606f;
	border: 1px solid #8fabbb;
}
QPushButton#ZOL_AddFunctionButton, QPushButton#ZOL_AddChildButton {
	border-width: 2px;
	border-style: solid;
	border-radius: 5px;
	min-height: 18px;
	font-weight: bold;
	font-size: 11px;
	color: #eeeeee;
	padding: 1px 6px;
}
QPushButton#ZOL_AddFunctionButton { background-color: rgb(49, 69, 80); border-color: rgb(143, 171, 187); }
QPushButton#ZOL_AddFunctionButton:hover { background-color: rgb(100, 140, 160); }
QPushButton#ZOL_AddFunctionButton:disabled { background-color: rgb(40, 44, 46); border-color: rgb(106, 111, 114); }
QPushButton#ZOL_AddChildButton { background-color: rgb(57, 80, 49); border-color: rgb(157, 187, 143); }
QPushButton#ZOL_AddChildButton:hover { background-color: rgb(110, 160, 100); }
QPushButton#ZOL_AddChildButton:disabled { background-color: rgb(41, 46, 40); border-color: rgb(107, 114, 106); }
CQParticleFunctionList QToolButton {
	color: #dcdcdc;
	border: none;
	padding: 1px 2px;
}
CQParticleFunctionList QToolButton:hover {
	background-color: #4a4e53;
	border-radius: 3px;
}
CQAssetParentChildMenu QPushButton {
	color: #dcdcdc;
	background-color: #3a3d41;
	border: 1px solid #5a5e63;
	border-radius: 3px;
	font-size: 10px;
}
CQAssetParentChildMenu QPushButton:disabled {
	color: #7a7a7a;
}
)" );
}
