#pragma once

// What several rooms with windows include, beside what those without include.
#include "PrecompiledCore.h"

#include <QAction>
#include <QApplication>
#include <QColor>
#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRegion>
#include <QScrollBar>
#include <QSpinBox>
#include <QTransform>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWidget>
