#include "Scan.h"

#include <ZdkVisionLib/platform/ZoVision.h>

//! [job]
/** Each worker fills the rows of its share. */
qStatus FillRows(void* context, void*, const qParallelArgs* args)
{
    const std::size_t rows = *static_cast<const std::size_t*>(context);
    for (std::size_t row = qParallelArgs_Begin(args, 0, rows); row < qParallelArgs_End(args, 0, rows); ++row)
    {
        const auto value = static_cast<double>(row * row);
        if (const qStatus status = qArray2_SetItem(args->target, row, 0, &value); status != STATUS_OK)
        {
            return status;
        }
    }
    return STATUS_OK;
}
//! [job]

int main()
{
    //! [objects]
    // A handle owns one count. Copies share the object; the last one to go disposes of it.
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), xxq64f_type, 10000, 1, nullptr));
    Zo::Object<void*> second = array;
    Expect(qObject_ShareCount(array) == 2);
    second.Reset();
    Expect(qObject_ShareCount(array) == 1);

    std::size_t rows = 10000;
    Zo::Test(qParallel_Execute(FillRows, &rows, array));
    Expect(*static_cast<const double*>(qArray2_At(array, 100, 0)) == 10000.0);

    // A list grows as items come.
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq32s_type, 0, nullptr));
    for (std::int32_t value = 0; value < 5; ++value)
    {
        Zo::Test(qArrayList_Add(list, &value));
    }
    Expect(qArrayList_Count(list) == 5 && *static_cast<const std::int32_t*>(qArrayList_At(list, 3)) == 3);

    // A frame as bytes and back.
    Zo::Object<void*> bytes;
    Zvl::RefFrame().Translate(1.0, 2.0, 3.0).Serialize(bytes.Slot());
    Zvl::RefFrame copy;
    copy.Deserialize(qArray1_Data(bytes), qArray1_Count(bytes), nullptr);
    std::printf("%zu bytes, z = %.1f\n", qArray1_Count(bytes), copy.GetTz());
    Expect(qArray1_Count(bytes) == 102 && copy.GetTz() == 3.0);

    // A failure is an exception with a status, the function and the place.
    try
    {
        Zvl::RetrieveSurfaceInputData(Zvl::Surface(), nullptr);
        Expect(false);
    }
    catch (const Zo::Exception& failure)
    {
        std::printf("%s failed with %d\n", failure.GetFunction(), failure.GetStatus());
        Expect(failure.GetStatus() == STATUS_BAD_PARAMETER);
    }
    //! [objects]

    //! [message]
    // What a sensor pipeline delivers: 20 rows by 30 columns, all missing until they are filled.
    Zo::Object<void*> message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 20, 30, 1, nullptr));
    const qPoint3d64f scale = {0.1, 0.1, 0.001};
    const qPoint3d64f offset = {5.0, 0.0, 40.0};
    Zo::Test(ZvSurfaceMsg_SetScale(message, &scale));
    Zo::Test(ZvSurfaceMsg_SetOffset(message, 0, &offset));

    Zvl::Surface surface; // shares the cells of the message
    surface.scale = ZvSurfaceMsg_Scale(message);
    surface.offset = Zvl::GetSurfaceItemOffset(message, 0);
    const qArray2 cells = ZvSurfaceMsg_PointsArray(message, 0);
    Zo::Test(qObject_Share(cells)); // the message keeps its own count
    surface.layers.emplace_back(cells);
    Expect(HeightAt(surface, 19, 29) == Zvl::GetNull<short>() && surface.offset.z == 40.0);
    //! [message]
}
