<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en">
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
            <translation>自動露出</translation>
        </message>
        <message>
            <source>Brightness:</source>
            <translation>明るさ:</translation>
        </message>
        <message>
            <source>CNN model descriptor</source>
            <translation>CNNモデル記述ファイル</translation>
        </message>
        <message>
            <source>Confidence [px]</source>
            <translation>信頼度 [px]</translation>
        </message>
        <message>
            <source>Edge Prediction</source>
            <translation>エッジ結果補正時差調整</translation>
        </message>
        <message>
            <source>Enable CNN</source>
            <translation>CNN機能をオン</translation>
        </message>
        <message>
            <source>Enable Sync</source>
            <translation>同期機能をオン</translation>
        </message>
        <message>
            <source>Eye
tracking</source>
            <translation>Eye
tracking</translation>
        </message>
        <message>
            <source>Framerate:</source>
            <translation>フレームレート:</translation>
        </message>
        <message>
            <source>Fusion on host</source>
            <translation>ホストで融合</translation>
        </message>
        <message>
            <source>Gain:</source>
            <translation>ゲイン:</translation>
        </message>
        <message>
            <source>Hole max</source>
            <translation>穴の最大値</translation>
        </message>
        <message>
            <source>Hole min</source>
            <translation>穴の最小値</translation>
        </message>
        <message>
            <source>Hole size</source>
            <translation>穴のサイズ</translation>
        </message>
        <message>
            <source>IMU</source>
            <translation>IMU</translation>
        </message>
        <message>
            <source>IMU Mode</source>
            <translation>IMUモード</translation>
        </message>
        <message>
            <source>IMU Offset</source>
            <translation>IMU時差調整</translation>
        </message>
        <message>
            <source>IMU only</source>
            <translation>IMUのみ</translation>
        </message>
        <message>
            <source>If you want to turn on slam, please set the stereo resolution to VGA!</source>
            <translation>SLAMを使用するには、ステレオの解像度をVGAに設定してください。</translation>
        </message>
        <message>
            <source>Language</source>
            <translation>言語</translation>
        </message>
        <message>
            <source>Max Distance[mm]</source>
            <translation>最大距離[mm]</translation>
        </message>
        <message>
            <source>Maximal distance:</source>
            <translation>最大距離:</translation>
        </message>
        <message>
            <source>Min Distance[mm]</source>
            <translation>最小距離[mm]</translation>
        </message>
        <message>
            <source>Minimum distance:</source>
            <translation>最小距離:</translation>
        </message>
        <message>
            <source>Mode</source>
            <translation>モード</translation>
        </message>
        <message>
            <source>Options</source>
            <translation>設定</translation>
        </message>
        <message>
            <source>RGB</source>
            <translation>RGB</translation>
        </message>
        <message>
            <source>RGBD</source>
            <translation>RGBD</translation>
        </message>
        <message>
            <source>SGBM</source>
            <translation>SGBM</translation>
        </message>
        <message>
            <source>SLAM</source>
            <translation>SLAM</translation>
        </message>
        <message>
            <source>Stereo</source>
            <translation>Stereo</translation>
        </message>
        <message>
            <source>TOF</source>
            <translation>TOF</translation>
        </message>
        <message>
            <source>TOF 3D</source>
            <translation>TOF 3D</translation>
        </message>
        <message>
            <source>VSlam only</source>
            <translation>VSlamのみ</translation>
        </message>
        <message>
            <source>VSlam+IMU</source>
            <translation>VSlam+IMU</translation>
        </message>
        <message>
            <source>Version</source>
            <translation>バージョン</translation>
        </message>
        <message>
            <source>Zoom [%]</source>
            <translation>ズーム [%]</translation>
        </message>
        <message>
            <source>baseline [mm]</source>
            <translation>基線長 [mm]</translation>
        </message>
    </context>
    <context>
        <name>EyetrackingView</name>
        <message>
            <source>Exposure Gain</source>
            <translation>露出ゲイン</translation>
        </message>
        <message>
            <source>Exposure Time [0.1ms]</source>
            <translation>露出時間 [0.1ms]</translation>
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
            <translation>auto</translation>
        </message>
        <message>
            <source>manual</source>
            <translation>manual</translation>
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
            <translation>ホストで融合</translation>
        </message>
        <message>
            <source>Gyro [rad/s]</source>
            <translation>角速度 [rad/s]</translation>
        </message>
        <message>
            <source>IMU Mode</source>
            <translation>IMUモード</translation>
        </message>
        <message>
            <source>IMU only</source>
            <translation>IMUのみ</translation>
        </message>
        <message>
            <source>Magn</source>
            <translation>磁気センサー</translation>
        </message>
        <message>
            <source>VSlam only</source>
            <translation>VSlamのみ</translation>
        </message>
        <message>
            <source>VSlam+IMU</source>
            <translation>VSlamとIMU</translation>
        </message>
    </context>
    <context>
        <name>InfoDialog</name>
        <message>
            <source>Copied</source>
            <translation>Copied</translation>
        </message>
        <message>
            <source>Info</source>
            <translation>情報</translation>
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
            <translation>フレームレート:</translation>
        </message>
    </context>
    <context>
        <name>SettingsView</name>
        <message>
            <source>CNN model descriptor</source>
            <translation>CNNモデル記述ファイル</translation>
        </message>
        <message>
            <source>Edge Prediction</source>
            <translation>エッジ結果補正時差調整</translation>
        </message>
        <message>
            <source>Enable CNN</source>
            <translation>CNN機能をオン</translation>
        </message>
        <message>
            <source>Enable Sync</source>
            <translation>同期機能をオン</translation>
        </message>
        <message>
            <source>IMU Offset</source>
            <translation>IMU時差調整</translation>
        </message>
        <message>
            <source>Language</source>
            <translation>語言</translation>
        </message>
        <message>
            <source>Options</source>
            <translation>設定</translation>
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
            <translation>信頼度 [px]</translation>
        </message>
        <message>
            <source>FOV [px]</source>
            <translation>FOV [px]</translation>
        </message>
        <message>
            <source>Hole max</source>
            <translation>穴の最大値</translation>
        </message>
        <message>
            <source>Hole min</source>
            <translation>穴の最小値</translation>
        </message>
        <message>
            <source>Hole size</source>
            <translation>穴のサイズ</translation>
        </message>
        <message>
            <source>Max Distance[mm]</source>
            <translation>最大距離[mm]</translation>
        </message>
        <message>
            <source>Min Distance[mm]</source>
            <translation>最小距離[mm]</translation>
        </message>
        <message>
            <source>Mode</source>
            <translation>モード</translation>
        </message>
        <message>
            <source>Zoom [%]</source>
            <translation>ズーム [%]</translation>
        </message>
        <message>
            <source>baseline [mm]</source>
            <translation>基線長 [mm]</translation>
        </message>
    </context>
    <context>
        <name>SlamView</name>
        <message>
            <source>Both</source>
            <translation>両方</translation>
        </message>
        <message>
            <source>CSlam mode</source>
            <translation>CSlam mode</translation>
        </message>
        <message>
            <source>Clear</source>
            <translation>クリア</translation>
        </message>
        <message>
            <source>Clear planes</source>
            <translation>平面をクリア</translation>
        </message>
        <message>
            <source>Distance:</source>
            <translation>距離:</translation>
        </message>
        <message>
            <source>Edge</source>
            <translation>エッジ</translation>
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
            <translation>エッジを有効化</translation>
        </message>
        <message>
            <source>Enabled</source>
            <translation>有効</translation>
        </message>
        <message>
            <source>Free view</source>
            <translation>自由視点</translation>
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
            <translation>地図</translation>
        </message>
        <message>
            <source>Mixed</source>
            <translation>ミックス</translation>
        </message>
        <message>
            <source>Mixed enabled</source>
            <translation>ミックスを有効化</translation>
        </message>
        <message>
            <source>Orientation (deg):</source>
            <translation>姿勢 (deg):</translation>
        </message>
        <message>
            <source>Planes source:</source>
            <translation>平面のソース:</translation>
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
            <translation>リセット</translation>
        </message>
        <message>
            <source>Slam mode</source>
            <translation>Slam mode</translation>
        </message>
        <message>
            <source>Status</source>
            <translation>状態</translation>
        </message>
        <message>
            <source>Visual odometry</source>
            <translation>Visual odometry</translation>
        </message>
        <message>
            <source>pitch</source>
            <translation>ピッチ</translation>
        </message>
        <message>
            <source>roll</source>
            <translation>ロール</translation>
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
            <translation>ヨー</translation>
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
            <translation>自動露出</translation>
        </message>
        <message>
            <source>Brightness:</source>
            <translation>明るさ:</translation>
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
            <translation>ゲイン:</translation>
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
            <translation>エッジ</translation>
        </message>
        <message>
            <source>Free view</source>
            <translation>自由視点</translation>
        </message>
        <message>
            <source>Mixed</source>
            <translation>ミックス</translation>
        </message>
        <message>
            <source>Use RGB</source>
            <translation>RGBを使用</translation>
        </message>
    </context>
    <context>
        <name>TofView</name>
        <message>
            <source>Colorize</source>
            <translation>カラー表示</translation>
        </message>
        <message>
            <source>Distance Mode:</source>
            <translation>Distance Mode:</translation>
        </message>
        <message>
            <source>Framerate:</source>
            <translation>フレームレート:</translation>
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
            <translation>最大距離:</translation>
        </message>
        <message>
            <source>Middle</source>
            <translation>Middle</translation>
        </message>
        <message>
            <source>Minimum distance:</source>
            <translation>最小距離:</translation>
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
            <translation>ドキュメンテーション</translation>
        </message>
        <message>
            <source>Info</source>
            <translation>情報</translation>
        </message>
        <message>
            <source>Save images</source>
            <translation>画像保存</translation>
        </message>
        <message>
            <source>Save path</source>
            <translation>保存先</translation>
        </message>
        <message>
            <source>Save video</source>
            <translation>動画保存</translation>
        </message>
        <message>
            <source>Show console</source>
            <translation>Show console</translation>
        </message>
        <message>
            <source>advanced</source>
            <translation>advanced</translation>
        </message>
        <message>
            <source>debug</source>
            <translation>debug</translation>
        </message>
    </context>
</TS>
