<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
    <context>
        <name>CalibrationDialog</name>
        <message>
            <source>Calibration info</source>
            <translation>Calibration info</translation>
        </message>
    </context>
    <context>
        <name>CalibrationDisplay</name>
        <message>
            <source>PDCM</source>
            <translation>PDCM</translation>
        </message>
        <message>
            <source>Rotation</source>
            <translation>Rotation</translation>
        </message>
        <message>
            <source>Translation</source>
            <translation>Translation</translation>
        </message>
        <message>
            <source>UCM</source>
            <translation>UCM</translation>
        </message>
    </context>
    <context>
        <name>CameraView</name>
        <message>
            <source>Auto Exposure</source>
            <translation>自动曝光</translation>
        </message>
        <message>
            <source>Brightness:</source>
            <translation>亮度:</translation>
        </message>
        <message>
            <source>CNN model descriptor</source>
            <translation>CNN模型描述文件</translation>
        </message>
        <message>
            <source>Edge Prediction</source>
            <translation>边缘预测</translation>
        </message>
        <message>
            <source>Enable CNN</source>
            <translation>使能CNN功能</translation>
        </message>
        <message>
            <source>Enable Sync</source>
            <translation>使能同步功能</translation>
        </message>
        <message>
            <source>Framerate:</source>
            <translation>帧率:</translation>
        </message>
        <message>
            <source>Fusion on host</source>
            <translation>主机端融合</translation>
        </message>
        <message>
            <source>Gain:</source>
            <translation>增益:</translation>
        </message>
        <message>
            <source>IMU Mode</source>
            <translation>IMU模式</translation>
        </message>
        <message>
            <source>IMU Offset</source>
            <translation>IMU偏移</translation>
        </message>
        <message>
            <source>IMU only</source>
            <translation>仅IMU</translation>
        </message>
        <message>
            <source>If you want to turn on slam, please set the stereo resolution to VGA!</source>
            <translation>如需开启SLAM，请先将双目分辨率设为VGA！</translation>
        </message>
        <message>
            <source>Language</source>
            <translation>语言</translation>
        </message>
        <message>
            <source>Maximal distance:</source>
            <translation>最大距离:</translation>
        </message>
        <message>
            <source>Minimum distance:</source>
            <translation>最小距离:</translation>
        </message>
        <message>
            <source>Mode</source>
            <translation>模式</translation>
        </message>
        <message>
            <source>Options</source>
            <translation>设置</translation>
        </message>
        <message>
            <source>VSlam only</source>
            <translation>仅VSlam</translation>
        </message>
        <message>
            <source>Version</source>
            <translation>版本</translation>
        </message>
    </context>
    <context>
        <name>EyetrackingView</name>
        <message>
            <source>Exposure Gain</source>
            <translation>曝光增益</translation>
        </message>
        <message>
            <source>Exposure Time [0.1ms]</source>
            <translation>曝光时间 [0.1ms]</translation>
        </message>
        <message>
            <source>Left</source>
            <translation>左</translation>
        </message>
        <message>
            <source>Right</source>
            <translation>右</translation>
        </message>
        <message>
            <source>auto</source>
            <translation>自动</translation>
        </message>
        <message>
            <source>manual</source>
            <translation>手动</translation>
        </message>
    </context>
    <context>
        <name>ImuView</name>
        <message>
            <source>Accel [g]</source>
            <translation>加速度 [g]</translation>
        </message>
        <message>
            <source>Fusion on host</source>
            <translation>主机端融合</translation>
        </message>
        <message>
            <source>Gyro [rad/s]</source>
            <translation>角速度 [rad/s]</translation>
        </message>
        <message>
            <source>IMU Mode</source>
            <translation>IMU模式</translation>
        </message>
        <message>
            <source>IMU only</source>
            <translation>仅IMU</translation>
        </message>
        <message>
            <source>Magn</source>
            <translation>磁力计</translation>
        </message>
        <message>
            <source>VSlam only</source>
            <translation>仅VSlam</translation>
        </message>
        <message>
            <source>VSlam+IMU</source>
            <translation>VSlam与IMU</translation>
        </message>
    </context>
    <context>
        <name>InfoDialog</name>
        <message>
            <source>Copied</source>
            <translation>已复制</translation>
        </message>
        <message>
            <source>Device info</source>
            <translation>设备信息</translation>
        </message>
    </context>
    <context>
        <name>Logo</name>
        <message>
            <source>Looking for Quivra camera</source>
            <translation>Looking for Quivra camera</translation>
        </message>
    </context>
    <context>
        <name>RgbView</name>
        <message>
            <source>Framerate:</source>
            <translation>帧率:</translation>
        </message>
    </context>
    <context>
        <name>SettingsView</name>
        <message>
            <source>CNN model descriptor</source>
            <translation>CNN模型描述文件</translation>
        </message>
        <message>
            <source>Edge Prediction</source>
            <translation>边缘预测</translation>
        </message>
        <message>
            <source>Enable CNN</source>
            <translation>使能CNN功能</translation>
        </message>
        <message>
            <source>Enable Sync</source>
            <translation>使能同步功能</translation>
        </message>
        <message>
            <source>IMU Offset</source>
            <translation>IMU偏移</translation>
        </message>
        <message>
            <source>Language</source>
            <translation>语言</translation>
        </message>
        <message>
            <source>Options</source>
            <translation>设置</translation>
        </message>
        <message>
            <source>µs</source>
            <translation>µs</translation>
        </message>
    </context>
    <context>
        <name>SgbmView</name>
        <message>
            <source>AVG PX Height</source>
            <translation>AVG PX Height</translation>
        </message>
        <message>
            <source>AVG PX Width</source>
            <translation>AVG PX Width</translation>
        </message>
        <message>
            <source>Confidence [px]</source>
            <translation>Confidence [px]</translation>
        </message>
        <message>
            <source>FOV [px]</source>
            <translation>FOV [px]</translation>
        </message>
        <message>
            <source>Hole max</source>
            <translation>Hole max</translation>
        </message>
        <message>
            <source>Hole min</source>
            <translation>Hole min</translation>
        </message>
        <message>
            <source>Hole size</source>
            <translation>Hole size</translation>
        </message>
        <message>
            <source>Max Distance[mm]</source>
            <translation>最大距离[mm]</translation>
        </message>
        <message>
            <source>Min Distance[mm]</source>
            <translation>最小距离[mm]</translation>
        </message>
        <message>
            <source>Mode</source>
            <translation>模式</translation>
        </message>
        <message>
            <source>Zoom [%]</source>
            <translation>缩放 [%]</translation>
        </message>
        <message>
            <source>baseline [mm]</source>
            <translation>baseline [mm]</translation>
        </message>
    </context>
    <context>
        <name>SlamView</name>
        <message>
            <source>Both</source>
            <translation>两者</translation>
        </message>
        <message>
            <source>CSlam mode</source>
            <translation>CSlam mode</translation>
        </message>
        <message>
            <source>Clear</source>
            <translation>清除</translation>
        </message>
        <message>
            <source>Clear planes</source>
            <translation>清除平面</translation>
        </message>
        <message>
            <source>Distance:</source>
            <translation>距离:</translation>
        </message>
        <message>
            <source>Edge</source>
            <translation>Edge</translation>
        </message>
        <message>
            <source>Edge - Stereo</source>
            <translation>Edge - Stereo</translation>
        </message>
        <message>
            <source>Edge - TOF</source>
            <translation>Edge - TOF</translation>
        </message>
        <message>
            <source>Edge enabled</source>
            <translation>启用Edge</translation>
        </message>
        <message>
            <source>Enabled</source>
            <translation>启用</translation>
        </message>
        <message>
            <source>Free view</source>
            <translation>自由视角</translation>
        </message>
        <message>
            <source>Host - Stereo</source>
            <translation>Host - Stereo</translation>
        </message>
        <message>
            <source>Host - TOF</source>
            <translation>Host - TOF</translation>
        </message>
        <message>
            <source>Load</source>
            <translation>Load</translation>
        </message>
        <message>
            <source>Loop Closure</source>
            <translation>Loop Closure</translation>
        </message>
        <message>
            <source>Map</source>
            <translation>地图</translation>
        </message>
        <message>
            <source>Mixed</source>
            <translation>Mixed</translation>
        </message>
        <message>
            <source>Mixed enabled</source>
            <translation>启用Mixed</translation>
        </message>
        <message>
            <source>Orientation (deg):</source>
            <translation>姿态 (deg):</translation>
        </message>
        <message>
            <source>Planes source:</source>
            <translation>平面来源:</translation>
        </message>
        <message>
            <source>Points:</source>
            <translation>点数:</translation>
        </message>
        <message>
            <source>Position (m):</source>
            <translation>位置 (m):</translation>
        </message>
        <message>
            <source>Reset</source>
            <translation>重置</translation>
        </message>
        <message>
            <source>Slam mode</source>
            <translation>Slam mode</translation>
        </message>
        <message>
            <source>Status</source>
            <translation>状态</translation>
        </message>
        <message>
            <source>Visual odometry</source>
            <translation>Visual odometry</translation>
        </message>
        <message>
            <source>pitch</source>
            <translation>pitch</translation>
        </message>
        <message>
            <source>roll</source>
            <translation>roll</translation>
        </message>
        <message>
            <source>x</source>
            <translation>x</translation>
        </message>
        <message>
            <source>y</source>
            <translation>y</translation>
        </message>
        <message>
            <source>yaw</source>
            <translation>yaw</translation>
        </message>
        <message>
            <source>z</source>
            <translation>z</translation>
        </message>
    </context>
    <context>
        <name>StereoView</name>
        <message>
            <source>720P</source>
            <translation>720P</translation>
        </message>
        <message>
            <source>Auto Exposure</source>
            <translation>自动曝光</translation>
        </message>
        <message>
            <source>Brightness:</source>
            <translation>亮度:</translation>
        </message>
        <message>
            <source>Debug + DebugStruct</source>
            <translation>Debug + DebugStruct</translation>
        </message>
        <message>
            <source>Debug + DebugStruct + 3D Points</source>
            <translation>Debug + DebugStruct + 3D Points</translation>
        </message>
        <message>
            <source>Demo + MixedMode</source>
            <translation>Demo + MixedMode</translation>
        </message>
        <message>
            <source>Demo + MixedMode + 3D Points</source>
            <translation>Demo + MixedMode + 3D Points</translation>
        </message>
        <message>
            <source>Gain:</source>
            <translation>增益:</translation>
        </message>
        <message>
            <source>Left</source>
            <translation>左</translation>
        </message>
        <message>
            <source>No stream</source>
            <translation>No stream</translation>
        </message>
        <message>
            <source>Resolution:     </source>
            <translation>Resolution:     </translation>
        </message>
        <message>
            <source>Right</source>
            <translation>右</translation>
        </message>
        <message>
            <source>UVC Mode</source>
            <translation>UVC Mode</translation>
        </message>
        <message>
            <source>VGA</source>
            <translation>VGA</translation>
        </message>
        <message>
            <source>Video only</source>
            <translation>Video only</translation>
        </message>
    </context>
    <context>
        <name>Tof3DView</name>
        <message>
            <source>Edge</source>
            <translation>Edge</translation>
        </message>
        <message>
            <source>Free view</source>
            <translation>自由视角</translation>
        </message>
        <message>
            <source>Mixed</source>
            <translation>Mixed</translation>
        </message>
        <message>
            <source>Use RGB</source>
            <translation>使用RGB</translation>
        </message>
    </context>
    <context>
        <name>TofView</name>
        <message>
            <source>Colorize</source>
            <translation>Colorize</translation>
        </message>
        <message>
            <source>Distance Mode:</source>
            <translation>Distance Mode:</translation>
        </message>
        <message>
            <source>Framerate:</source>
            <translation>帧率:</translation>
        </message>
        <message>
            <source>IQMIX_DF</source>
            <translation>IQMIX_DF</translation>
        </message>
        <message>
            <source>IQMIX_SF</source>
            <translation>IQMIX_SF</translation>
        </message>
        <message>
            <source>LABELIZE_DF</source>
            <translation>LABELIZE_DF</translation>
        </message>
        <message>
            <source>LABELIZE_SF</source>
            <translation>LABELIZE_SF</translation>
        </message>
        <message>
            <source>Long</source>
            <translation>Long</translation>
        </message>
        <message>
            <source>M2MIX_DF</source>
            <translation>M2MIX_DF</translation>
        </message>
        <message>
            <source>M2MIX_SF</source>
            <translation>M2MIX_SF</translation>
        </message>
        <message>
            <source>Maximal distance:</source>
            <translation>最大距离:</translation>
        </message>
        <message>
            <source>Middle</source>
            <translation>Middle</translation>
        </message>
        <message>
            <source>Minimum distance:</source>
            <translation>最小距离:</translation>
        </message>
        <message>
            <source>Mode:</source>
            <translation>Mode:</translation>
        </message>
        <message>
            <source>Short</source>
            <translation>Short</translation>
        </message>
    </context>
    <context>
        <name>VersionDialog</name>
        <message>
            <source>Copied</source>
            <translation>已复制</translation>
        </message>
        <message>
            <source>Device version</source>
            <translation>Device version</translation>
        </message>
    </context>
    <context>
        <name>main</name>
        <message>
            <source>Debug level [debug=1, info=2, warn=3, err=4, critical=5, off=6]</source>
            <translation>Debug level [debug=1, info=2, warn=3, err=4, critical=5, off=6]</translation>
        </message>
        <message>
            <source>Documentation</source>
            <translation>文档</translation>
        </message>
        <message>
            <source>Info</source>
            <translation>信息</translation>
        </message>
        <message>
            <source>Save images</source>
            <translation>保存画面</translation>
        </message>
        <message>
            <source>Save path</source>
            <translation>保存路径</translation>
        </message>
        <message>
            <source>Save video</source>
            <translation>保存视频</translation>
        </message>
        <message>
            <source>Show console</source>
            <translation>显示命令行</translation>
        </message>
        <message>
            <source>advanced</source>
            <translation>高级</translation>
        </message>
        <message>
            <source>debug</source>
            <translation>debug</translation>
        </message>
    </context>
</TS>
