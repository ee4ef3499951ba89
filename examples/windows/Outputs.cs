// C#, early bound: lists the outputs that are in use, with the declarations of VelkCom.cs.
//   Outputs HOST PORT PASSWORD
// Build: csc Outputs.cs VelkCom.cs
// VelkCom.cs lies in the folder "bindings" beside the examples.
using System;
using VelkCom;

static class Outputs
{
    const byte Last = 99;

    [STAThread]
    static int Main(string[] words)
    {
        if (words.Length != 3)
        {
            Console.Error.WriteLine("usage: Outputs HOST PORT PASSWORD");
            return 2;
        }
        var serial = new Serial();
        string password = words[2];
        // The port is a signed 16-bit number.
        var result = (Result)serial.OpenTCP(words[0], unchecked((short)ushort.Parse(words[1])), ref password);
        for (byte output = 1; result == Result.Success && output <= Last; output++)
        {
            string mode = "", items = "";
            short count = 255; // all
            result = (Result)serial.Ctl_Param("R", output, ref mode, ref items, ref count);
            if (result == Result.Success) Console.WriteLine("output {0}: {1}, {2} items", output, mode, count);
            if (result == Result.BadMode) result = Result.Success; // not in use
        }
        serial.CloseTCP();
        if (result != Result.Success) Console.Error.WriteLine("Outputs: " + result);
        return result == Result.Success ? 0 : 1;
    }
}
