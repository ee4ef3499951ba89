using System;
using System.Linq;
using System.Reflection;

static class LateBound {
    // A variable, which is passed by reference.
    class Variable {
        public object Value;
        public Variable(object value) => Value = value;
    }

    static object Call(object target, string name, params object[] given) {
        object[] passed = Array.ConvertAll(given, value => value is Variable variable ? variable.Value : value);
        var references = new ParameterModifier(Math.Max(given.Length, 1));
        for (int i = 0; i < given.Length; ++i) references[i] = given[i] is Variable;
        object result = target.GetType().InvokeMember(name, BindingFlags.InvokeMethod, null, target, passed,
            new[] { references }, null, null);
        for (int i = 0; i < given.Length; ++i) if (given[i] is Variable variable) variable.Value = passed[i];
        return result;
    }

    static object Property(object target, string name, params object[] value) => target.GetType().InvokeMember(
        name, value.Length == 0 ? BindingFlags.GetProperty : BindingFlags.SetProperty, null, target, value);

    static Variable Ref(object value) => new Variable(value);

    static void Main(string[] words) => Session.Run(words, Talk);

    static void Talk(Session session) {
        Type type = Type.GetTypeFromProgID("VelkCom.Serial", true);
        object serial = Activator.CreateInstance(type), other = Activator.CreateInstance(type);
        byte zero = 0, own = session.Own;
        // Prints the result and what came back in variables.
        void Line(string label, string name, params object[] given) {
            object result = Call(serial, name, given);
            session.Line(label, new[] { result }.Concat(given.OfType<Variable>().Select(v => v.Value)).ToArray());
        }
        Property(serial, "SerAddress", 255);
        session.Line("SerAddress", Property(serial, "SerAddress"));
        Line("OpenTCP", "OpenTCP", "127.0.0.1", session.Port, Ref("pass"));
        session.Together.SignalAndWait();
        session.Line("once more", Call(other, "OpenTCP", "127.0.0.1", session.Port));
        session.Line("link", Property(serial, "TCP"), Property(serial, "SoortETH").Equals(session.Kind));
        Line("Ctl_Param R", "Ctl_Param", "R", 5, Ref(""), Ref(""), Ref((short)255));
        Line("  the mode", "Ctl_Param", "R", 5, Ref(""));
        Line("  from 9 on", "Ctl_Param", "R", 5, "", Ref(""), Type.Missing, 9);
        Line("Ctl_Soft W", "Ctl_Soft", "W", own, 2, 7, "O", 3, 10, false);
        Line("Ctl_Soft R", "Ctl_Soft", "R", own, 2, Ref(zero), Ref(""), Ref(zero), Ref(zero), Ref(true), Ref(false));
        Line("Preset W", "Preset", "W", own, "Evening at home ", 34, Session.High, 200, Type.Missing, 1);
        Line("Preset R", "Preset", "R", own, Ref(""), 34, Ref(""), Ref(zero), Ref(zero), Ref(zero));
        Line("ReadCom", "ReadCom", 1, 5, 1, "V");
        session.Line("values", Call(serial, "IfSetBit", 64, 6), Call(serial, "LdZr", 7, 3), Call(serial, "WhatBit", 0),
            Call(serial, "DECtoBCD", 159));
        session.Fails("DECtoBCD", () => Call(serial, "DECtoBCD", 160));
        var data = Ref("\x0012\x0059xyz\x001A\x0001xyz");
        session.Fails("ConvertSim", () => Call(serial, "ConvertSim", data));
        session.Line("  what it converted", data.Value);
        session.Fails("SoortETH", () => Property(serial, "SoortETH", "\u4E2D"));
        Line("late: variables without a type", "Preset", "R", own, Ref(null), 3, Ref(null), Ref(null), Ref(null),
            Ref(null));
        Line("late: an array of bytes", "Ctl_Param", "R", 5, Ref(null), Ref(new byte[0]));
        session.Fails("late: no number", () => Call(serial, "DECtoBCD", "seven"));
        session.Fails("late: too many", () => Call(serial, "DECtoBCD", 1, 2));
        session.Fails("late: no such method", () => Call(serial, "DECtoBC", 1));
        Line("CloseTCP", "CloseTCP");
        Property(serial, "TCP", false);
        session.Fails("ReadCom", () => Call(serial, "ReadCom", 1, 5, 1, "V"));
    }
}
