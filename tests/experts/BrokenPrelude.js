throw new RangeError("out of order");
