#pragma once

class QLineEdit;

/// Makes a number that is dropped on the edit replace the whole text: dropped between the digits of another
/// it would be refused, or become part of a third. Other drops are left to the edit.
void takeDroppedNumbersWhole(QLineEdit& edit);
