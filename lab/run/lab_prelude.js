// Makes chance and the time of day follow the run: evaluated before each script, which can tell no difference and
// does not see the object __lab.

(function(global) {
    "use strict";

    const chance = global.__lab.random, now = global.__lab.now;
    delete global.__lab;
    const apply = Reflect.apply, construct = Reflect.construct;
    const define = Object.defineProperty, describe = Object.getOwnPropertyDescriptor;
    const OwnDate = Date, textOf = Date.prototype.toString;

    function put(object, key, value) {
        define(object, key, { configurable: true, enumerable: false, writable: true, value: value });
    }

    // Methods, unlike functions, cannot be called with new.
    put(Math, "random", { random() { return chance(); } }.random);

    function VirtualDate(year, month, date, hours, minutes, seconds, ms) {
        if (new.target === undefined)
            return apply(textOf, new OwnDate(now()), []);
        return construct(OwnDate, arguments.length > 0 ? arguments : [now()], new.target);
    }
    for (const key of Reflect.ownKeys(OwnDate))
        define(VirtualDate, key, describe(OwnDate, key));
    put(VirtualDate, "now", { now() { return now(); } }.now);
    put(VirtualDate.prototype, "constructor", VirtualDate);
    put(global, "Date", VirtualDate);
})(this);
