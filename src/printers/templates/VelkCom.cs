// Printed from VelkCom's method table and its comments; see CONTRIBUTING.md.
// @help@.
//
// Early-bound declarations for C# and other .NET languages. Compile this file with yours, or into a library of its
// own for Visual Basic:
//
//     var serial = new VelkCom.Serial();
//     byte result = serial.OpenCom(3);
//     if (result != 0) Console.WriteLine((VelkCom.Result)result);
//
// A string carries bytes: one character each, 0 to 255. Methods that raise a run-time error throw an exception whose
// HResult is 0x800A0000 plus the error's number; on .NET Core up to 3.1 it is the InnerException of the one caught.
#pragma warning disable 618, 1573, 1591 // dispatch interfaces are meant; names say the rest
using System.Runtime.InteropServices;

namespace @library@
{
    /// <summary>What a result byte says. Any other is a status that the controller gave.</summary>
    public enum Result : byte
    {
@results@
    }

    /// <summary>The output modes by their numbers; the names are the codes that Ctl_Param takes. A stored 4 is RO or
    /// DI.</summary>
    public enum OutputMode : byte
    {
@modes@
    }

    /// <summary>@class@</summary>
    [ComImport, Guid("@interfaceId@"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
    public interface @interfaceName@
    {
@methods@
    }

    /// <summary>What "new Serial()" makes: the component, as it is registered.</summary>
    [ComImport, Guid("@interfaceId@"), CoClass(typeof(SerialClass))]
    public interface Serial : @interfaceName@
    {
    }

    [ComImport, Guid("@classId@"), ClassInterface(ClassInterfaceType.None)]
    public class SerialClass
    {
    }
}
