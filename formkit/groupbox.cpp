#include "groupbox.h"

GroupBox::GroupBox(QWidget *parent) : QGroupBox(parent) {}

void GroupBox::prop_Value_changed(const QString &) {}
